#include <iostream>

#include "command/Commands.h"
#include "command/Text.h"

namespace vantrel {

void makeAndTell(Store& store, std::vector<Change>& changes) {
    const auto tell = [&] {
        for (const auto& change : changes) {
            if (change.isMade || !change.isNeeded) std::cout << change.line() << '\n';
        }
    };
    try {
        store.make(changes);
    } catch (const Problem&) {
        tell();
        throw;
    }
    tell();
}

Status set(Context& context, const Arguments& arguments) {
    const auto& words = arguments.words;
    if (words.size() % 2 != 0) {
        throw Problem::misuse(onOneLine(words.back()) + ": a value is missing; set takes NAME VALUE [NAME VALUE…]");
    }
    Problems problems;
    std::vector<Wish> wishes;
    for (std::size_t index = 0; index < words.size(); index += 2) {
        problems.collect([&] {
            const Setting& setting = context.store.setting(words[index]);
            wishes.push_back({&setting, setting.parse(words[index + 1])});
        });
    }
    problems.tell();
    auto changes = context.store.changes(wishes);
    makeAndTell(context.store, changes);
    return Status::done;
}

}  // namespace vantrel
