#pragma once

#include <string>
#include <variant>
#include <vector>

namespace vantrel::bench {

using Value = std::variant<bool, long, std::string>;

struct Setting {
    std::string name;
    Value value;
};

/// What a program keeps: 17 flags, 7 numbers and 2 paths, under names that every store accepts.
extern const std::vector<Setting> settings;

/// The same and other programs' settings behind them, as they are in a user's folder.
std::vector<Setting> settingsAnd(int foreign);

/// The same as an XML property list, sorted as GNUstep writes it.
std::string propertyListOf(std::vector<Setting> all);

/// A store of settings, as a program uses it.
class Peer {
public:
    virtual ~Peer() = default;

    /// Stores all that into an empty store.
    virtual void fill(const std::vector<Setting>& all) = 0;

    /// Sees what other processes have stored since the last look.
    virtual void refresh() = 0;

    /// The value of the setting with that index, of the same type as in `settings`.
    virtual Value value(std::size_t index) = 0;

    /// Stores a flag, as lastingly as the store can. Every process that looks afterwards sees it.
    virtual void change(std::size_t index, bool flag) = 0;
};

/// Ends the process with status 1 unless that is so.
void require(bool isTrue, const char* what);

/// Each peer's file has this: opens the store that is in a folder.
Peer* open(const std::string& folder);

}  // namespace vantrel::bench
