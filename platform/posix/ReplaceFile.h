#pragma once

#include <string>
#include <string_view>

#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// A file's next content, on its way into the file's place in three steps: ready beside it, then in its place, then
/// lasting. Whatever fails or is left out, the file holds all of its old content or all of its new one. Each step
/// returns 0, or -1 and `errno`.
class FileReplacement {
public:
    /// Of the file at `path`, which need not exist, or of the one that a symbolic link there leads to.
    FileReplacement(SystemCalls& calls, std::string path);
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    /// Removes what isn't in its place by then.
    ~FileReplacement();

    /// Writes `bytes` into a new file of mode 0600 in the same folder, and through to the disk.
    int prepare(std::string_view bytes);

    /// Renames the new file over the old one. `status`, if wanted, is told about it; all zeros when that isn't known.
    int place(struct stat* status = nullptr);

    /// Writes the renaming through to the disk.
    int settle();

    /// The path of the file itself, past all links. Known once `prepare` has succeeded.
    const std::string& target() const { return target_; }

private:
    int openFolder();
    int createAndWrite(std::string_view bytes);
    void close(int& descriptor);

    SystemCalls& calls_;
    std::string target_;
    std::string temporary_;
    int folder_ = -1;
    int file_ = -1;
};

/// Replaces the file at `path` with one that holds `bytes`, mode 0600, whole and lasting. -1 and `errno` on failure:
/// the file is then as it was, or, when only the renaming couldn't be written through, already the new one.
int replaceFile(SystemCalls& calls, const std::string& path, std::string_view bytes);

}  // namespace vantrel::posix
