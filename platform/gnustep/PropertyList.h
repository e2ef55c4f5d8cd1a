#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Preferences.h"

namespace vantrel::gnustep {

/// The most bytes that are read: no settings file comes near, and what a hostile one can cost stays small.
inline constexpr std::size_t largestPropertyList = std::size_t{16} * 1024 * 1024;

/// A property list whose top is a dictionary. Entries that aren't set here keep their type and value, known or not, on
/// the way from file to file.
class PropertyList {
public:
    /// An empty dictionary.
    PropertyList();
    ~PropertyList();
    PropertyList(const PropertyList& other);
    PropertyList& operator=(const PropertyList& other);
    /// A list that was moved from can only be assigned to, or let go.
    PropertyList(PropertyList&&) noexcept;
    PropertyList& operator=(PropertyList&&) noexcept;

    /// Reads an XML or a binary list. Nothing when it is damaged, isn't a dictionary at the top, passes a bound, or
    /// holds something that could not be written again.
    static std::optional<PropertyList> parse(std::string_view bytes);

    /// What stands under `key`.
    PreferenceValue value(std::string_view key) const;

    /// The number under `key` when it is a whole one that fits; nothing otherwise. A Boolean is not a number.
    std::optional<std::int64_t> integer(std::string_view key) const;

    /// The number under `key` as NSNumber's `intValue` gives it: an integer's low 32 bits; a fraction cut off, and held
    /// to the range of the type; 1 or 0 for a Boolean. Nothing when there is no number.
    std::optional<std::int32_t> intValue(std::string_view key) const;

    /// Each replaces what stands under `key`, of whatever type. Texts are UTF-8.
    void setBoolean(std::string_view key, bool flag);
    void setInteger(std::string_view key, std::int64_t number);
    void setString(std::string_view key, std::string_view text);

    /// Does nothing when there is no entry under `key`.
    void remove(std::string_view key);

    /// Takes the entry under `key` over from `other`, or removes it where `other` has none.
    void copyEntry(std::string_view key, const PropertyList& other);

    /// Whether both have an entry under `key` of the same type and value, or neither has one.
    bool hasSameEntry(std::string_view key, const PropertyList& other) const;

    /// All keys, sorted.
    std::vector<std::string> keys() const;

    /// The list as an XML property list, entries sorted by key.
    std::string toXML() const;

private:
    /// The entries as the platform's library holds them.
    struct Entries;

    explicit PropertyList(std::unique_ptr<Entries> entries);

    std::unique_ptr<Entries> entries_;
};

}  // namespace vantrel::gnustep
