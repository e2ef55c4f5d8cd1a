#pragma once

#include <string>

#include "platform/Files.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// Files on Linux. What a failed operation says is an English sentence without a full stop that names the file, the
/// reason, and the full path that the reason is about:
///
///     “RT Software Enabler.txt” couldn’t be moved to “Enablers” because this already exists: /…/RT Software
///     EnablerA.txt
class PosixFiles : public Files {
public:
    explicit PosixFiles(SystemCalls& calls = SystemCalls::real()) : calls_(calls) {}

    /// Follows links, as on macOS: a link that leads nowhere doesn't exist, nor does what may not be looked at.
    bool fileExistsAtPath(const std::string& path) override;

    /// One call decides and renames, so that nothing comes between; a link that leads nowhere counts as something
    /// there. Moves files, folders and links (never what they lead to), within one file system only, and only on one
    /// that can rename without overwriting.
    FileFailure moveItemAtPath(const std::string& from, const std::string& to) override;

    /// Copies one file. The copy is written and flushed to the disk as a `TemporaryFile` in its folder and then given
    /// its own name: nobody sees a part of it. Only a process killed meanwhile leaves the hidden file behind, until the
    /// next copy.
    ///
    /// A link is followed and what it leads to is copied, where macOS copies the link: a relative one would lead
    /// elsewhere from its new folder. The copy gets the nine permission bits, but neither set-user-ID nor
    /// set-group-ID: it belongs to whoever made it.
    FileFailure copyItemAtPath(const std::string& from, const std::string& to) override;

    /// Deletes a file, or a link and not what it leads to. A folder is not deleted.
    FileFailure removeItemAtPath(const std::string& path) override;

private:
    SystemCalls& calls_;
};

}  // namespace vantrel::posix
