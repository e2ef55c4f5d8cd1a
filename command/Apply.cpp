#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>

#include "command/Commands.h"
#include "command/Text.h"
#include "settings/Reading.h"

namespace vantrel {
namespace {

constexpr std::size_t largestProfile = std::size_t{16} * 1024 * 1024;

/// All bytes of a file or, for "-", of standard input.
std::string bytesOf(const std::string& file) {
    std::ifstream opened;
    if (file != "-") opened.open(file, std::ios::binary);
    std::istream& input = file == "-" ? std::cin : opened;
    std::string bytes;
    char buffer[65536];
    while (input.good() && bytes.size() <= largestProfile) {
        input.read(buffer, sizeof buffer);
        bytes.append(buffer, static_cast<std::size_t>(input.gcount()));
    }
    if (bytes.size() > largestProfile) throw Problem::failure("is longer than 16 MiB");
    if (!input.eof()) throw Problem::failure("can't be read");
    return bytes;
}

PropertyListEntries entriesIn(const std::string& bytes, PropertyLists& propertyLists) {
    const auto start = bytes.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    if (start != std::string::npos && bytes[start] == '{') return entriesFromJSON(bytes);
    auto entries = propertyLists.dictionaryWithData(bytes);
    if (!entries) throw Problem::misuse("is neither a property list with a dictionary nor JSON with an object");
    return std::move(*entries);
}

PropertyListEntries entriesOf(const std::string& file, PropertyLists& propertyLists) {
    try {
        return entriesIn(bytesOf(file), propertyLists);
    } catch (const Problem& problem) {
        const std::string name = file == "-" ? "standard input" : onOneLine(file);
        throw Problem{problem.status, name + ": " + problem.lines};
    }
}

/// A profile's own `ColorProcessingPath` has to be what its stages and methods say.
void mustAgree(const Setting& setting, const NewPreferenceValue& value, long path) {
    if (!setting.key() || agrees(*setting.key(), value, path)) return;
    throw Problem::misuse("ColorProcessingPath: " + std::to_string(path) + " disagrees with " +
                          std::string(setting.name()) + ", which is " + setting.shown(value));
}

/// What the profile wants, in the order of the pane.
std::vector<Wish> wishesOf(const PropertyListEntries& entries, const Store& store) {
    Problems problems;
    std::vector<Wish> wishes;
    const long* path = nullptr;
    for (const auto& entry : entries) {
        problems.collect([&] {
            const Setting& setting = store.setting(entry.first);
            wishes.push_back({&setting, setting.accept(entry.second)});
        });
    }
    std::sort(wishes.begin(), wishes.end(),
              [](const Wish& one, const Wish& other) { return one.setting < other.setting; });
    for (const auto& wish : wishes) {
        if (!wish.setting->hasControl()) path = std::get_if<long>(&wish.value);
    }
    for (const auto& wish : wishes) {
        if (path) problems.collect([&] { mustAgree(*wish.setting, wish.value, *path); });
    }
    problems.tell();
    return wishes;
}

/// The changes that are told: those that a check found needed, or those that were made.
std::vector<const Change*> told(const std::vector<Change>& changes, bool isCheck) {
    std::vector<const Change*> told;
    for (const auto& change : changes) {
        if (isCheck ? change.isNeeded : change.isMade) told.push_back(&change);
    }
    return told;
}

Node nodeOf(const std::vector<const Change*>& changes, long unchanged, bool isCheck) {
    Node::List changed;
    for (const auto* change : changes) {
        changed.push_back({Node::Members{{"key", {std::string(change->setting->name())}},
                                         {"before", storedNode(change->before.stored)},
                                         {"after", storedNode(asStored(change->after))}}});
    }
    return {Node::Members{{"changed", {changed}}, {"unchanged", {unchanged}}, {"check", {isCheck}}}};
}

void tell(const std::vector<Change>& changes, const Arguments& arguments) {
    const auto changed = told(changes, arguments.check);
    const auto unchanged = std::count_if(changes.begin(), changes.end(), [](auto& change) { return !change.isNeeded; });
    if (arguments.json) {
        std::cout << toJSON(nodeOf(changed, unchanged, arguments.check)) << '\n';
        return;
    }
    for (const auto* change : changed) std::cout << change->line() << '\n';
    std::cout << changed.size() << " changed, " << unchanged << " unchanged\n";
}

}  // namespace

Status apply(Context& context, const Arguments& arguments) {
    auto& store = context.store;
    auto changes =
        store.changes(wishesOf(entriesOf(arguments.words.front(), context.system.services.propertyLists), store));
    if (arguments.check) warnOfHiddenSettings(context);
    try {
        if (!arguments.check) store.make(changes);
    } catch (const Problem&) {
        tell(changes, arguments);
        throw;
    }
    tell(changes, arguments);
    return arguments.check && !told(changes, true).empty() ? Status::different : Status::done;
}

}  // namespace vantrel
