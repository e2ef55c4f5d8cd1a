#pragma once

#include <optional>
#include <string>
#include <utility>

#include "platform/Files.h"
#include "platform/posix/SystemCalls.h"
#include "platform/posix/Trouble.h"

namespace vantrel::posix {

/// Files on Linux. A failed operation says why in a `sentence`.
class PosixFiles : public Files {
public:
    /// Below the folder `linkFree`, if any, nothing is changed in a folder that a symbolic link below it leads to, as
    /// the links stand by then: whoever can plant one there doesn't get files moved elsewhere.
    explicit PosixFiles(SystemCalls& calls = SystemCalls::real(), std::string linkFree = "")
        : calls_(calls), linkFree_(std::move(linkFree)) {}

    /// Follows links, as on macOS: a link that leads nowhere doesn't exist, nor does what may not be looked at.
    bool fileExistsAtPath(const std::string& path) override;

    /// Files of up to 16 MiB; a longer one equals none.
    bool contentsEqualAtPath(const std::string& one, const std::string& other) override;

    /// One call decides and renames, so that nothing comes between; a link that leads nowhere counts as something
    /// there. Moves files, folders and links (never what they lead to), within one file system only, and only on one
    /// that can rename without overwriting. Lasting: one that can't be written through to the disk is taken back.
    FileFailure moveItemAtPath(const std::string& from, const std::string& to) override;

    /// Copies one file. The copy is written and flushed to the disk as a `TemporaryFile` in its folder and then given
    /// its own name, lasting: nobody sees a part of it, not even after a power cut. Only a process killed meanwhile
    /// leaves the hidden file behind, until the next copy.
    ///
    /// A link is followed and what it leads to is copied, where macOS copies the link: a relative one would lead
    /// elsewhere from its new folder. The copy gets the nine permission bits, but neither set-user-ID nor
    /// set-group-ID: it belongs to whoever made it.
    FileFailure copyItemAtPath(const std::string& from, const std::string& to) override;

    /// Deletes a file, or a link and not what it leads to. A folder is not deleted. Lasting where the disk allows it.
    FileFailure removeItemAtPath(const std::string& path) override;

private:
    std::optional<Trouble> linkOnTheWayTo(const std::string& path);
    int flush(const std::string& folder);
    std::optional<Trouble> copyFile(const std::string& from, const std::string& to);

    SystemCalls& calls_;
    std::string linkFree_;
};

}  // namespace vantrel::posix
