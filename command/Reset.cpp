#include "command/Commands.h"

namespace vantrel {

Status reset(Context& context, const Arguments& arguments) {
    Problems problems;
    std::vector<Wish> wishes;
    for (const auto& name : arguments.words) {
        problems.collect([&] {
            const Setting& setting = context.store.setting(name);
            setting.mustHaveControl();
            wishes.push_back({&setting, setting.setUpDefault()});
        });
    }
    problems.tell();
    if (arguments.words.empty()) {
        for (const auto& setting : context.store.settings()) {
            const bool isEnabler = setting.key() == &key("fcpRTEnableSwap");
            if (setting.hasControl() && !isEnabler) wishes.push_back({&setting, setting.setUpDefault()});
        }
    }
    auto changes = context.store.changes(wishes);
    makeAndTell(context.store, changes);
    return Status::done;
}

}  // namespace vantrel
