#include "platform/linux/FolderEvents.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <utility>

namespace vantrel::linux {
namespace {

constexpr std::uint32_t happenings = IN_ATTRIB | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_DELETE_SELF | IN_MODIFY |
                                     IN_MOVED_FROM | IN_MOVED_TO | IN_MOVE_SELF;

/// Watches the folder or the nearest one above that is there; -1 when that fails.
int watchNearest(int descriptor, std::filesystem::path folder) {
    int watch = inotify_add_watch(descriptor, folder.c_str(), happenings);
    while (watch < 0 && folder.has_relative_path()) {
        folder = folder.parent_path();
        watch = inotify_add_watch(descriptor, folder.c_str(), happenings);
    }
    return watch;
}

}  // namespace

FolderEvents::FolderEvents(std::vector<std::string> folders)
    : folders_(std::move(folders)), descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    watchFolders();
    if (std::find(watched_.begin(), watched_.end(), -1) == watched_.end()) return;
    close(descriptor_);
    descriptor_ = -1;
}

FolderEvents::~FolderEvents() {
    if (descriptor_ >= 0) close(descriptor_);
}

void FolderEvents::acknowledge() {
    std::array<char, 16384> events;
    while (read(descriptor_, events.data(), events.size()) > 0) {
    }
    watchFolders();
}

void FolderEvents::watchFolders() {
    std::vector<int> wanted;
    for (const auto& folder : folders_) {
        // What is made before the folder above is watched is found by the second look.
        watchNearest(descriptor_, folder);
        wanted.push_back(watchNearest(descriptor_, folder));
    }
    for (const int watch : watched_) {
        if (std::find(wanted.begin(), wanted.end(), watch) == wanted.end()) inotify_rm_watch(descriptor_, watch);
    }
    watched_ = std::move(wanted);
}

}  // namespace vantrel::linux
