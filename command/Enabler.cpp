#include <iostream>

#include "command/Commands.h"
#include "platform/Controls.h"

namespace vantrel {

Status enabler(Context& context, const Arguments& arguments) {
    auto& enabler = context.store.enabler();
    const std::string& word = arguments.words.front();
    if (word == "mend") {
        if (const auto failure = enabler.mend()) throw Problem::failure(*failure);
    } else if (word != "status" && enabler.turn(word == "on" ? onState : offState)) {
        throw Problem::failure("fcpRTEnableSwap: could not be switched " + word);
    }
    std::cout << describe(enabler.state()) << '\n';
    return Status::done;
}

}  // namespace vantrel
