#pragma once

#include <string>
#include <utility>

namespace vantrel {

/// How the command ends.
enum class Status {
    done = 0,         ///< or there was nothing to do
    failed = 1,       ///< it could not be done
    different = 2,    ///< there is a difference, or a finding
    wronglyUsed = 64  ///< an unknown command, option or setting, or a value that the control can't show
};

/// Why the command can't go on: thrown, told on standard error, and its status is the command's.
struct Problem {
    Status status;
    /// One line, or several, that name what is wrong and what would be right.
    std::string lines;

    static Problem failure(std::string lines) { return {Status::failed, std::move(lines)}; }
    static Problem misuse(std::string lines) { return {Status::wronglyUsed, std::move(lines)}; }
};

/// The problems of several pieces of input, told together.
class Problems {
public:
    /// Does what may throw a Problem, and keeps that one.
    template <typename Attempt>
    void collect(const Attempt& attempt) {
        try {
            attempt();
        } catch (const Problem& problem) {
            found_.status = problem.status;
            found_.lines += (found_.lines.empty() ? "" : "\n") + problem.lines;
        }
    }

    /// Throws them all as one, if there were any.
    void tell() const {
        if (!found_.lines.empty()) throw found_;
    }

private:
    Problem found_{};
};

}  // namespace vantrel
