#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/posix/Descriptor.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// A new file that gets its own name when it is whole. Until then it is called ".Vantrel-unfinished-" and six letters
/// and digits, and is locked as long as its process lives: one that isn't locked was left by a process that died.
class TemporaryFile {
public:
    explicit TemporaryFile(SystemCalls& calls) : calls_(calls) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    /// Removes it unless it was renamed.
    ~TemporaryFile();

    /// Makes the file, empty and of mode 0600, in `folder`, and removes what dead processes left there. Returns 0, or
    /// -1 and `errno`.
    [[nodiscard]] int create(const std::string& folder);

    /// The open file, to write into.
    const Descriptor& file() const { return *file_; }

    /// Gives it its own name, in place of what has that name. Returns 0, or -1 and `errno`.
    [[nodiscard]] int rename(const std::string& path);

    /// The same, but fails with EEXIST where something has that name.
    [[nodiscard]] int renameNoReplace(const std::string& path);

private:
    SystemCalls& calls_;
    std::string path_;
    std::optional<Descriptor> file_;
};

/// Calls `visit` with the path of each temporary file in `folder` that was left by a process that died. What is not
/// certainly such a file is passed over, whatever its name: links, files of other users, files with a second name, and
/// all that isn't a file.
void visitLeftovers(SystemCalls& calls, const std::string& folder,
                    const std::function<void(const std::string& path)>& visit);

/// Removes them.
void removeLeftovers(SystemCalls& calls, const std::string& folder);

}  // namespace vantrel::posix
