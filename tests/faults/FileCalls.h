#pragma once

#include <chrono>

namespace vantrel::faults {

/// What becomes of the calls on files that the watched libraries make.
enum class Fault {
    none,
    killed,      ///< the process, before the call
    failed,      ///< the call
    kept,        ///< the call and all later ones of its kind fail
    misreported  ///< the call is carried out, and said to have failed
};

/// A fault at one call.
struct Attack {
    Fault fault = Fault::none;
    /// Which call, counted from 1.
    int call = 0;
    /// What a call that fails has in `errno`.
    int error = 0;
};

/// What came of an attack, for the process that ordered it.
struct Report {
    int calls = 0;
    /// The longest that any step paused, in nanoseconds.
    long long longestPause = 0;
};

/// From now on, calls that come from shared libraries whose path contains one of the two texts are watched. Pauses in
/// them take no time, but their clocks go on.
void watchLibraries(const char* one, const char* other);

/// Attacks the watched calls from the next one on. `report` is written as they come.
void attack(const Attack& attack, Report& report);

/// Ends the attack, and the count.
void endAttack();

/// What follows is another step for the user, and pauses anew.
void beginStep();

/// Lets the clocks of the watched libraries go on.
void passTime(std::chrono::nanoseconds time);

}  // namespace vantrel::faults
