#include <unistd.h>

#include <cstring>
#include <iostream>

#include "tests/host/PrivateMachine.h"

/// Runs a command where /Applications and /Library are empty:
///
///     in_private_machine COMMAND ARGUMENT…
int main(int count, char** arguments) {
    if (count < 2) return 64;
    try {
        vantrel::PrivateMachine::enter();
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << '\n';
        return 1;
    }
    execvp(arguments[1], arguments + 1);
    std::cerr << arguments[1] << ": " << std::strerror(errno) << '\n';
    return 127;
}
