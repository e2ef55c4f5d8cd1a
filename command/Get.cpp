#include <algorithm>
#include <iostream>

#include "command/Commands.h"

namespace vantrel {

Status get(Context& context, const Arguments& arguments) {
    const Setting& setting = context.store.setting(arguments.words.front());
    const Standing standing = context.store.standing(setting);
    if (arguments.stored && standing.state == State::missing) {
        const auto files = context.system.inspection.findings({});
        const bool isHidden =
            std::any_of(files.begin(), files.end(), [](auto& file) { return file.hidesSettings(); }) ||
            !context.system.services.overrides.load();
        throw Problem::failure(std::string(setting.name()) + ": nothing is stored" +
                               (isHidden ? " that can be read; see vantrelctl doctor" : ""));
    }
    std::cout << (arguments.stored ? storedText(standing.stored) : setting.shown(standing.value)) << '\n';
    return Status::done;
}

}  // namespace vantrel
