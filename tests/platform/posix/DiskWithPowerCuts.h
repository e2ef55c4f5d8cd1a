#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/Folders.h"
#include "tests/platform/posix/FaultySystemCalls.h"

namespace vantrel::posix {

/// The real system calls on a folder, and what a cut of the power could leave of it. What a file holds is safe once it
/// is flushed; that a name was made, renamed or removed is safe once its folder is. All that isn't safe is dropped or
/// kept at will, each name for itself: a disk promises nothing about their order.
class DiskWithPowerCuts : public FaultySystemCalls {
public:
    /// Each file by its path below the folder, with its content.
    using Contents = std::map<std::string, std::string>;

    /// What is in the folder now is safe.
    explicit DiskWithPowerCuts(std::string folder) : root_(std::move(folder)) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root_)) {
            const auto number = numberOf(entry.path());
            safeNames_[entry.path()] = number;
            if (entry.is_regular_file()) safeContents_[number] = contentOf(entry.path());
        }
    }

    /// Everything that could be found after a cut at this moment.
    std::vector<Contents> afterACut() const {
        std::vector<Contents> found;
        for (std::size_t kept = 0; kept < std::size_t{1} << unsafe_.size(); ++kept) {
            Names names = safeNames_;
            for (std::size_t change = 0; change < unsafe_.size(); ++change) {
                if ((kept >> change & 1U) != 0) apply(unsafe_[change], names);
            }
            found.push_back(contentsOf(names));
        }
        return found;
    }

    int fsync(int descriptor) override {
        const int flushed = FaultySystemCalls::fsync(descriptor);
        if (flushed == 0) noteFlush(descriptor);
        return flushed;
    }
    int mkostemp(char* pathTemplate) override {
        const int descriptor = FaultySystemCalls::mkostemp(pathTemplate);
        if (descriptor >= 0) {
            safeContents_[numberOf(pathTemplate)] = "";
            noteChange(pathTemplate, {{pathTemplate, numberOf(pathTemplate)}});
        }
        return descriptor;
    }
    int rename(const char* from, const char* to) override {
        const auto number = numberOf(from);
        const int renamed = FaultySystemCalls::rename(from, to);
        if (renamed == 0) noteChange(to, {{from, std::nullopt}, {to, number}});
        return renamed;
    }
    int renameNoReplace(const char* from, const char* to) override {
        const auto number = numberOf(from);
        const int renamed = FaultySystemCalls::renameNoReplace(from, to);
        if (renamed == 0) noteChange(to, {{from, std::nullopt}, {to, number}});
        return renamed;
    }
    int link(const char* from, const char* to) override {
        const int linked = FaultySystemCalls::link(from, to);
        if (linked == 0) noteChange(to, {{to, numberOf(to)}});
        return linked;
    }
    int unlink(const char* path) override {
        const int removed = FaultySystemCalls::unlink(path);
        if (removed == 0) noteChange(path, {{path, std::nullopt}});
        return removed;
    }
    int mkdir(const char* path, mode_t mode) override {
        const int made = FaultySystemCalls::mkdir(path, mode);
        if (made == 0) noteChange(path, {{path, numberOf(path)}});
        return made;
    }
    int rmdir(const char* path) override {
        const int removed = FaultySystemCalls::rmdir(path);
        if (removed == 0) noteChange(path, {{path, std::nullopt}});
        return removed;
    }

private:
    /// Files and folders go by their numbers on the real disk.
    using Number = std::optional<ino_t>;
    using Names = std::map<std::string, Number>;

    /// Names that one call has changed in one folder.
    struct Change {
        std::string folder;
        std::vector<std::pair<std::string, Number>> names;
    };

    static Number numberOf(const std::string& path) {
        struct stat status {};
        return ::lstat(path.c_str(), &status) == 0 ? Number(status.st_ino) : std::nullopt;
    }

    static std::string contentOf(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static void apply(const Change& change, Names& names) {
        for (const auto& [path, number] : change.names) {
            if (number) {
                names[path] = number;
            } else {
                names.erase(path);
            }
        }
    }

    void noteChange(const std::string& path, std::vector<std::pair<std::string, Number>> names) {
        unsafe_.push_back({folderOf(path), std::move(names)});
    }

    void noteFlush(int descriptor) {
        const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        struct stat status {};
        if (::fstat(descriptor, &status) != 0) return;
        if (S_ISREG(status.st_mode)) {
            safeContents_[status.st_ino] = contentOf(link);
            return;
        }
        const std::string folder = std::filesystem::read_symlink(link);
        std::vector<Change> still;
        for (const auto& change : unsafe_) {
            if (change.folder == folder) {
                apply(change, safeNames_);
            } else {
                still.push_back(change);
            }
        }
        unsafe_ = std::move(still);
    }

    Contents contentsOf(const Names& names) const {
        Contents contents;
        for (const auto& [path, number] : names) {
            const auto content = safeContents_.find(number);
            bool isReached = content != safeContents_.end();
            for (std::string folder = folderOf(path); folder != root_; folder = folderOf(folder)) {
                isReached = isReached && names.contains(folder);
            }
            if (isReached) contents[path.substr(root_.size() + 1)] = content->second;
        }
        return contents;
    }

    std::string root_;
    Names safeNames_;
    std::map<Number, std::string> safeContents_;
    std::vector<Change> unsafe_;
};

}  // namespace vantrel::posix
