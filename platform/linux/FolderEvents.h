#pragma once

#include <string>
#include <vector>

namespace vantrel::linux {

/// Tells by a descriptor when something happens in some folders. One that is missing is waited for in the folder above.
class FolderEvents {
public:
    /// Starts to watch. `folders` are absolute paths.
    explicit FolderEvents(std::vector<std::string> folders);
    FolderEvents(const FolderEvents&) = delete;
    FolderEvents& operator=(const FolderEvents&) = delete;
    ~FolderEvents();

    /// Can be read when something has happened; negative when the system watches no more for this user.
    int descriptor() const { return descriptor_; }

    /// Takes what has happened, so that the descriptor tells of the next, and watches the folders that are there by
    /// now.
    void acknowledge();

private:
    void watchFolders();

    std::vector<std::string> folders_;
    int descriptor_;
    std::vector<int> watched_;
};

}  // namespace vantrel::linux
