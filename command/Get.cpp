#include <iostream>

#include "command/Commands.h"

namespace vantrel {

Status get(Context& context, const Arguments& arguments) {
    const Setting& setting = context.store.setting(arguments.words.front());
    warnOfHiddenSettings(context);
    const Standing standing = context.store.standing(setting);
    if (arguments.stored && standing.state == State::missing) {
        throw Problem::failure(std::string(setting.name()) + ": nothing is stored");
    }
    std::cout << (arguments.stored ? storedText(standing.stored) : setting.shown(standing.value)) << '\n';
    return Status::done;
}

}  // namespace vantrel
