#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Preferences.h"
#include "platform/gnustep/Splices.h"
#include "platform/gnustep/XMLPropertyList.h"

namespace vantrel::gnustep {

/// The most bytes that are read or written: no settings file comes near, and what a hostile one can cost stays small.
inline constexpr std::size_t largestPropertyList = std::size_t{16} * 1024 * 1024;

class PropertyList;

/// What is to stand under keys of a list's dictionary. Of several changes to one key the last counts.
class PropertyListChanges {
public:
    /// Texts are UTF-8; bytes that aren't become U+FFFD.
    void set(std::string_view key, const NewPreferenceValue& value);

    void remove(std::string_view key);

    /// Takes the entry under `key` over from `list`, or removes it where `list` has none.
    void copy(std::string_view key, const PropertyList& list);

private:
    friend class PropertyList;

    /// The values as they are written, with their tags; nothing where the entry goes.
    std::map<std::string, std::string, std::less<>> elements_;
};

/// What changes make of a list as it was when they were looked at. What they don't name stays letter for letter,
/// entries of no known meaning and comments included; new entries go to the end of the dictionary.
class PropertyListUpdate {
    friend class PropertyList;

    Splices splices_;
    /// Where entries of the list end from now on, by their indices; 0 for one that goes.
    std::vector<std::pair<std::size_t, std::uint32_t>> ends_;
    /// The new entries, as they stand in what is put in at `addedAt_`.
    std::vector<PropertyListEntry> added_;
    /// Of those; see `PropertyListEntry`.
    std::string names_;
    std::uint32_t addedAt_ = 0;
};

/// A property list whose top is a dictionary: its XML, and where each entry stands in it. Of a key that comes twice,
/// the last entry counts.
class PropertyList {
public:
    /// An empty dictionary.
    PropertyList();

    /// Reads a list in XML, in the binary format or in the old text style, with or without zeros behind it. Nothing
    /// when it is damaged, isn't a dictionary at the top, or is larger than `largestPropertyList`, in XML as well.
    /// Takes time in proportion to its length, and less than 64 MB beside it.
    static std::optional<PropertyList> parse(std::string bytes);

    /// The same for this list, which stays as it is where that gives nothing. The list has its bytes from `bytes`,
    /// which are none then, unless it has to change some; everything else leaves `bytes` as they are.
    bool take(std::string& bytes);

    /// What stands under `key`.
    PreferenceValue value(std::string_view key) const;

    /// Whether just this value stands under `key`: 1 is neither 1.0 nor true.
    bool holds(std::string_view key, const NewPreferenceValue& value) const;

    /// The value under `key` with its tags, as it stands in the XML; empty when there is none.
    std::string_view element(std::string_view key) const;

    /// All keys, sorted, each once.
    std::vector<std::string> keys() const;

    /// What `changes` make of the list. Nothing when it would be larger than `largestPropertyList`, and so could not be
    /// read again.
    [[nodiscard]] std::optional<PropertyListUpdate> updateFor(const PropertyListChanges& changes) const;

    /// The bytes that `make` will make of the list's, in pieces that stand in the list and in `update`.
    std::vector<std::string_view> bytesAfter(const PropertyListUpdate& update) const {
        return update.splices_.pieces(bytes_);
    }
    std::vector<std::string_view> bytesAfter(const PropertyListUpdate&& gone) const = delete;

    /// Carries out what was found for the list as it is.
    void make(const PropertyListUpdate& update);

    /// The list after `changes`. Nothing as `updateFor`.
    [[nodiscard]] std::optional<PropertyList> with(const PropertyListChanges& changes) const;

    /// The list as it is written to a file.
    const std::string& bytes() const { return bytes_; }

private:
    using Entry = PropertyListEntry;

    /// As `take`, of what needs no conversion.
    bool takeXML(std::string& xml);

    /// The first and the last but one of the entries under `key`.
    std::pair<std::size_t, std::size_t> indicesOf(std::string_view key) const;

    std::string_view name(const Entry& entry) const;

    /// Appends an entry to `added`, which will be put into the list, and notes where it stands there.
    static void addTo(std::string& added, PropertyListUpdate& update, std::string_view key, std::string_view element);

    /// Puts the entries from the index `firstNew` on to their places among the others.
    void sort(std::size_t firstNew);

    std::string bytes_;
    /// Sorted by name, and those of one name as they stand in the bytes.
    std::vector<Entry> entries_;
    /// See `PropertyListEntry`.
    std::string names_;
    std::uint32_t dictionaryEnd_ = 0;
};

}  // namespace vantrel::gnustep
