#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <stdexcept>
#include <vector>

#include "tests/platform/posix/FaultySystemCalls.h"

namespace vantrel::posix {

/// Starts a process that does `work` and ends with status 0, or 1 when that returns false. Returns its id.
inline pid_t startProcess(const std::function<bool()>& work) {
    const pid_t process = fork();
    if (process == 0) _exit(work() ? 0 : 1);
    if (process < 0) throw std::runtime_error("can't start a process");
    return process;
}

/// Waits for the end of a process and returns what `waitpid` tells of it: 0 when all went well.
inline int endOf(pid_t process) {
    int status = 0;
    if (waitpid(process, &status, 0) != process) throw std::runtime_error("can't wait for a process");
    return status;
}

/// Starts a process that does `work` with calls of its own and is killed before its call number `number`, counted from
/// 0. Returns whether it was; it wasn't when it made fewer.
inline bool killedBeforeCall(std::size_t number, const std::function<void(SystemCalls&)>& work) {
    const int status = endOf(startProcess([&] {
        FaultySystemCalls calls;
        calls.before = [&](const std::string&) {
            if (calls.made().size() == number + 1) kill(getpid(), SIGKILL);
        };
        work(calls);
        return true;
    }));
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

}  // namespace vantrel::posix
