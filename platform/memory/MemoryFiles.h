#pragma once

#include <map>
#include <set>
#include <string>

#include "platform/Files.h"
#include "platform/PropertyLists.h"
#include "platform/memory/Journal.h"

namespace vantrel::memory {

/// Whole files in memory. Records "exists PATH", "compare PATH with PATH", "move FROM -> TO", "copy FROM -> TO" and
/// "remove PATH", whether they succeed or not.
class MemoryFiles : public Files {
public:
    explicit MemoryFiles(Journal& journal) : journal_(journal) {}

    bool fileExistsAtPath(const std::string& path) override {
        journal_.record("exists " + path);
        return contents.contains(path);
    }

    bool contentsEqualAtPath(const std::string& one, const std::string& other) override {
        journal_.record("compare " + one + " with " + other);
        return contents.contains(one) && contents.contains(other) && contents[one] == contents[other];
    }

    FileFailure moveItemAtPath(const std::string& from, const std::string& to) override {
        auto failure = transfer("move " + from + " -> " + to, from, to);
        if (!failure) contents.erase(from);
        return failure;
    }

    FileFailure copyItemAtPath(const std::string& from, const std::string& to) override {
        return transfer("copy " + from + " -> " + to, from, to);
    }

    FileFailure removeItemAtPath(const std::string& path) override {
        const std::string call = "remove " + path;
        journal_.record(call);
        if (failing.contains(call)) return "told to fail";
        if (!contents.erase(path)) return path + " does not exist";
        return std::nullopt;
    }

    /// Content by path.
    std::map<std::string, std::string> contents;
    /// Calls, as the journal spells them, that fail with "told to fail" and change nothing.
    std::set<std::string> failing;

private:
    FileFailure transfer(const std::string& call, const std::string& from, const std::string& to) {
        journal_.record(call);
        if (failing.contains(call)) return "told to fail";
        if (!contents.contains(from)) return from + " does not exist";
        if (contents.contains(to)) return to + " exists";
        contents[to] = contents[from];
        return std::nullopt;
    }

    Journal& journal_;
};

/// Property lists in memory. Records "dictionary PATH".
class MemoryPropertyLists : public PropertyLists {
public:
    explicit MemoryPropertyLists(Journal& journal) : journal_(journal) {}

    std::optional<PropertyListEntries> dictionaryWithContentsOfFile(const std::string& path) override {
        journal_.record("dictionary " + path);
        const auto found = dictionaries.find(path);
        return found == dictionaries.end() ? std::nullopt : std::optional(found->second);
    }

    std::optional<PropertyListEntries> dictionaryWithData(std::string_view bytes) override {
        journal_.record("dictionary of " + std::to_string(bytes.size()) + " bytes");
        return std::nullopt;
    }

    std::string xmlText(std::string_view text) override { return std::string(text); }

    /// By path.
    std::map<std::string, PropertyListEntries> dictionaries;

private:
    Journal& journal_;
};

}  // namespace vantrel::memory
