#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/Log.h"
#include "platform/gnustep/PropertyList.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/PersistingFailure.h"
#include "platform/posix/SystemCalls.h"
#include "platform/posix/Trouble.h"

namespace vantrel {

/// Bytes. Ten thousand numbers fit; what a hostile record can cost the programs that load it stays small.
inline constexpr std::size_t largestRecord = std::size_t{512} * 1024;

/// The file of the override record, in the user's application support folder.
inline std::string overrideRecordFile(const std::string& applicationSupportFolder) {
    return applicationSupportFolder + "/Vantrel/OverrideMetadata.plist";
}

/// The codec's override record: a property list with numbers under four-character keys, which several programs read and
/// change at any time.
///
/// It can't be read when it is damaged or longer than `largestRecord`, or when a symbolic link stands in its place or
/// in that of its folder: no link leads a write elsewhere.
class OverrideRecord {
public:
    OverrideRecord(const std::string& applicationSupportFolder, Log& log,
                   posix::SystemCalls& calls = posix::SystemCalls::real());

    /// What the record holds; empty when there is none or its file is. Nothing when it can't be read.
    std::optional<gnustep::PropertyList> read();

    /// Changes in the record what differs between `before` and `after`, which have what a program loaded and what it
    /// wants; every other entry stays as it is by now, letter for letter. Others who do the same meanwhile lose
    /// nothing; of two who change one entry, the last one wins. The record is replaced whole and durably, mode 0600,
    /// its folders are made where they are missing.
    ///
    /// Waits a second and a half for the others at most, then goes on without the lock. False when the record can't be
    /// read or written, or couldn't be read afterwards; it is then as it was, or, when only the last step to the disk
    /// failed, already changed. The log hears of either, and of the next success.
    [[nodiscard]] bool change(const gnustep::PropertyList& before, const gnustep::PropertyList& after);

private:
    std::optional<posix::Trouble> store(const gnustep::PropertyList& before, const gnustep::PropertyList& after);
    void lock(const posix::Descriptor& folder);

    std::string path_;
    std::string folder_;
    posix::SystemCalls& calls_;
    posix::PersistingFailure failure_;
    posix::PersistingFailure lockFailure_;
};

}  // namespace vantrel
