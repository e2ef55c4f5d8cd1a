#pragma once

#include <optional>
#include <string>

#include "platform/gnustep/PropertyList.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel {

/// The codec's override record: a property list, "Vantrel/OverrideMetadata.plist" in the user's application support
/// folder, with numbers under four-character keys. What other programs keep in it, under other keys or of other types,
/// is carried through every write unchanged.
class OverrideRecord {
public:
    /// Nothing when there is a record that can't be read or is no dictionary; it is then never overwritten. Empty when
    /// there is none yet.
    static std::optional<OverrideRecord> load(const std::string& applicationSupportFolder,
                                              posix::SystemCalls& calls = posix::SystemCalls::real());

    /// What was loaded, and changes to it, which last from `write` on.
    gnustep::PropertyList& entries() { return entries_; }

    /// Replaces the record on disk, whole and durably, mode 0600, making its folders where they are missing. Returns
    /// false when that failed; the record on disk is then what it was.
    bool write();

private:
    OverrideRecord(std::string path, posix::SystemCalls& calls) : path_(std::move(path)), calls_(calls) {}

    std::string path_;
    posix::SystemCalls& calls_;
    gnustep::PropertyList entries_;
};

}  // namespace vantrel
