#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/posix/Descriptor.h"
#include "platform/posix/SystemCalls.h"
#include "platform/posix/TemporaryFile.h"

namespace vantrel::posix {

/// What becomes of a symbolic link in a file's place.
enum class Links {
    followed,  ///< it stays, and what it leads to is replaced
    replaced,  ///< the link is, and what it leads to stays
};

/// What may stand in a file's place when the new one comes there.
enum class InPlace {
    anything,  ///< but a folder; it is replaced
    nothing,   ///< EEXIST otherwise. Where the disk can't tell while it renames, what stands there is replaced.
};

/// A file's next content, on its way into the file's place in three steps: ready beside it, then in its place, then
/// lasting. Whatever fails or is left out, the file holds all of its old content or all of its new one. Each step
/// returns 0, or -1 and `errno`.
class FileReplacement {
public:
    /// Of the file at `path`, which need not exist.
    FileReplacement(SystemCalls& calls, std::string path, Links links = Links::followed);

    /// Writes the bytes in `pieces` into a new file of mode 0600 in the same folder, and through to the disk. What dead
    /// processes left there on their way is removed.
    [[nodiscard]] int prepare(std::span<const std::string_view> pieces);
    [[nodiscard]] int prepare(std::string_view bytes) { return prepare({&bytes, 1}); }

    /// Gives the new file the old one's name. `status`, if wanted, is told about it; all zeros when that isn't known.
    [[nodiscard]] int place(struct stat* status = nullptr, InPlace inPlace = InPlace::anything);

    /// Whether the file of that `status` is the one that was placed, as it was made: whatever anybody does to it later
    /// gives it another time. Its own was chosen so that no clock's tick has it.
    bool isAsMade(const struct stat& status) const;

    /// Writes the renaming through to the disk, and whatever else was done to names in the folder.
    [[nodiscard]] int settle();

    /// The path of the file itself, past all links that are followed. Known once `prepare` has succeeded.
    const std::string& target() const { return target_; }

private:
    void setTime();

    SystemCalls& calls_;
    std::string target_;
    Links links_;
    std::optional<Descriptor> folder_;
    TemporaryFile file_;
    /// When the new file says that it was written.
    struct timespec time_ {};
};

/// Replaces the file at `path` with one that holds `bytes`, mode 0600, whole and lasting. -1 and `errno` on failure:
/// the file is then as it was, or, when only the renaming couldn't be written through, already the new one.
[[nodiscard]] int replaceFile(SystemCalls& calls, const std::string& path, std::string_view bytes);

}  // namespace vantrel::posix
