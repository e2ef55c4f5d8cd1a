#pragma once

#include <dirent.h>
#include <fcntl.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/Folders.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// Files by path, with their content.
using Tree = std::map<std::string, std::string>;

/// The real system calls on a folder, and what of their work would be left if the power were cut: a file has what was
/// flushed of it, or all that was written; a name that was made, changed or removed since its folder was last flushed
/// is as it was before or as it is now, each such change by itself.
class VolatileDisk : public SystemCalls {
public:
    /// What is in `folder` now is on the disk for good.
    explicit VolatileDisk(const std::string& folder) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file()) durable_[entry.path()] = add(contentsOf(entry.path()));
        }
        names_ = durable_;
    }

    /// Run after every call that changes anything.
    std::function<void()> afterChange;

    /// All that may be found after a power cut now.
    std::set<Tree> afterACut() const {
        std::set<Tree> trees;
        const std::size_t choices = changes_.size() + unflushed_.size();
        if (choices > 16) throw std::runtime_error("too much was never flushed");
        for (std::uint32_t choice = 0; choice < (std::uint32_t{1} << choices); ++choice) {
            trees.insert(treeAfter(choice));
        }
        return trees;
    }

    int open(const char* path, int flags, mode_t mode) override {
        const int descriptor = SystemCalls::open(path, flags, mode);
        if (descriptor >= 0) paths_[descriptor] = path;
        return descriptor;
    }

    int close(int descriptor) override {
        paths_.erase(descriptor);
        files_.erase(descriptor);
        return SystemCalls::close(descriptor);
    }

    int mkostemp(char* pathTemplate) override {
        const int descriptor = SystemCalls::mkostemp(pathTemplate);
        if (descriptor < 0) return descriptor;
        files_[descriptor] = add("");
        paths_[descriptor] = pathTemplate;
        change({{pathTemplate, files_[descriptor]}});
        return descriptor;
    }

    ssize_t write(int descriptor, const void* buffer, std::size_t size) override {
        const ssize_t written = SystemCalls::write(descriptor, buffer, size);
        const auto file = files_.find(descriptor);
        if (written > 0 && file != files_.end()) {
            unflushed_.try_emplace(file->second, contents_[file->second]);
            contents_[file->second].append(static_cast<const char*>(buffer), static_cast<std::size_t>(written));
            changed();
        }
        return written;
    }

    int fsync(int descriptor) override {
        const auto file = files_.find(descriptor);
        if (file != files_.end()) {
            unflushed_.erase(file->second);
        } else {
            flushFolder(paths_.at(descriptor));
        }
        changed();
        return 0;
    }

    int rename(const char* from, const char* to) override { return moved(SystemCalls::rename(from, to), from, to); }
    int renameNoReplace(const char* from, const char* to) override {
        return moved(SystemCalls::renameNoReplace(from, to), from, to);
    }

    int link(const char* from, const char* to) override {
        const int linked = SystemCalls::link(from, to);
        if (linked == 0) change({{to, names_.at(from)}});
        return linked;
    }

    int unlink(const char* path) override {
        const int unlinked = SystemCalls::unlink(path);
        if (unlinked == 0) change({{path, nowhere}});
        return unlinked;
    }

private:
    /// Files go by numbers, in the order in which they were made.
    static constexpr int nowhere = -1;
    /// What becomes of names at once: each leads to a file or nowhere.
    using Change = std::vector<std::pair<std::string, int>>;

    static std::string contentsOf(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    int add(std::string contents) {
        contents_.push_back(std::move(contents));
        return static_cast<int>(contents_.size()) - 1;
    }

    void changed() const {
        if (afterChange) afterChange();
    }

    static void apply(const Change& change, std::map<std::string, int>& names) {
        for (const auto& [name, file] : change) {
            if (file == nowhere) {
                names.erase(name);
            } else {
                names[name] = file;
            }
        }
    }

    void change(const Change& change) {
        apply(change, names_);
        changes_.push_back(change);
        changed();
    }

    int moved(int result, const char* from, const char* to) {
        // Folders, such as locks, hold nothing that could be lost.
        if (result == 0 && names_.contains(from)) change({{from, nowhere}, {to, names_.at(from)}});
        return result;
    }

    void flushFolder(const std::string& folder) {
        std::erase_if(changes_, [&](const Change& change) {
            if (folderOf(change.front().first) != folder && folderOf(change.back().first) != folder) return false;
            apply(change, durable_);
            return true;
        });
    }

    /// With each of the changes and each of the unflushed contents that `choice` has a bit for.
    Tree treeAfter(std::uint32_t choice) const {
        auto names = durable_;
        for (const auto& change : changes_) {
            if (choice & 1) apply(change, names);
            choice >>= 1;
        }
        auto contents = contents_;
        for (const auto& [file, flushed] : unflushed_) {
            if (choice & 1) contents[static_cast<std::size_t>(file)] = flushed;
            choice >>= 1;
        }
        Tree tree;
        for (const auto& [name, file] : names) tree[name] = contents[static_cast<std::size_t>(file)];
        return tree;
    }

    std::vector<std::string> contents_;
    /// What was flushed of a file that was written to since.
    std::map<int, std::string> unflushed_;
    /// Where names lead now, and where they do for good.
    std::map<std::string, int> names_;
    std::map<std::string, int> durable_;
    /// What isn't for good yet, in its order.
    std::vector<Change> changes_;
    std::map<int, std::string> paths_;
    std::map<int, int> files_;
};

}  // namespace vantrel::posix
