#pragma once

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace vantrel {

/// Gives this process, and those it starts, a file tree of their own in which /Applications and /Library are empty,
/// each on a disk of its own in memory. Everything else is the machine's. Nothing is made or mounted where another
/// process could see it, and all of it ends with the last of these processes.
///
/// It works as root, and as anyone where the system lets users make namespaces.
class PrivateMachine {
public:
    /// Throws std::runtime_error, with what is needed, where the system allows no such tree.
    static void enter() {
        const auto user = std::to_string(geteuid());
        const auto group = std::to_string(getegid());
        if (unshare(CLONE_NEWNS) != 0) {
            check(unshare(CLONE_NEWUSER | CLONE_NEWNS), "make a mount namespace: run as root or allow user namespaces");
            writeTo("/proc/self/setgroups", "deny");
            writeTo("/proc/self/uid_map", user + " " + user + " 1");
            writeTo("/proc/self/gid_map", group + " " + group + " 1");
        }
        check(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), "keep mounts to this process");

        // The new tree grows in a folder that every machine has and that no test here looks at.
        const std::string root = "/sys";
        const auto workingFolder = std::filesystem::current_path();
        putInMemory(root);
        for (const auto& entry : std::filesystem::directory_iterator("/")) {
            const std::string name = entry.path().filename();
            if (name != "sys" && name != "Applications" && name != "Library") show(entry, root + "/" + name);
        }
        for (const std::string folder : {"/Applications", "/Library"}) {
            std::filesystem::create_directory(root + folder);
            putInMemory(root + folder);
        }
        check(chroot(root.c_str()), "change the root");
        std::filesystem::current_path(workingFolder);
    }

    /// Puts an empty disk in memory in the place of a folder, for these processes.
    static void putInMemory(const std::string& folder) {
        check(mount("none", folder.c_str(), "tmpfs", 0, "mode=0755"), "mount " + folder);
    }

private:
    static void check(int result, const std::string& what) {
        if (result != 0) throw std::runtime_error("can't " + what + " (" + std::strerror(errno) + ")");
    }

    static void writeTo(const std::string& path, const std::string& text) {
        std::ofstream file(path);
        file << text << std::flush;
        if (!file) throw std::runtime_error("can't write " + path);
    }

    /// Makes what stands at `entry` appear at `path` too.
    static void show(const std::filesystem::directory_entry& entry, const std::string& path) {
        if (entry.is_symlink()) {
            std::filesystem::copy_symlink(entry.path(), path);
            return;
        }
        if (entry.is_directory()) {
            std::filesystem::create_directory(path);
        } else {
            writeTo(path, "");
        }
        check(mount(entry.path().c_str(), path.c_str(), nullptr, MS_BIND | MS_REC, nullptr), "show " + path);
    }
};

}  // namespace vantrel
