#include "platform/gnustep/GNUstepStoreInspection.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/gnustep/DefaultsLock.h"
#include "platform/gnustep/DomainFile.h"
#include "platform/gnustep/PropertyList.h"
#include "platform/posix/FileContents.h"
#include "platform/posix/Folders.h"
#include "platform/posix/TemporaryFile.h"
#include "platform/posix/Trouble.h"

namespace vantrel::gnustep {
namespace {

using Problem = StoreFinding::Problem;

constexpr mode_t othersBits = S_IRWXG | S_IRWXO;

}  // namespace

std::vector<StoreFinding> GNUstepStoreInspection::findings(const std::vector<std::string>& otherFolders) {
    std::vector<StoreFinding> findings;
    const std::string domainFile = places_.defaultsFolder + '/' + places_.domain + ".plist";
    examineList(domainFile, largestPropertyList, findings);
    if (const auto link = linkToRecord()) {
        findings.push_back({Problem::notFollowed, *link});
    } else {
        examineList(places_.record, places_.longestRecord, findings);
    }
    examineWhetherHidden(places_.defaultsFolder + "/NSGlobalDomain.plist", findings);
    findFilesSetAside(domainFile, findings);
    findUnfinishedFiles(places_.defaultsFolder, findings);
    findUnfinishedFiles(posix::folderOf(places_.record), findings);
    for (const auto& folder : otherFolders) findUnfinishedFiles(folder, findings);
    DefaultsLock lock(calls_, places_.defaultsFolder);
    if (lock.isAbandoned()) findings.push_back({Problem::abandonedLock, lock.path()});
    return findings;
}

/// The symbolic link in the record's place, or in that of its folder.
std::optional<std::string> GNUstepStoreInspection::linkToRecord() {
    for (const auto& path : {posix::folderOf(places_.record), places_.record}) {
        struct stat status {};
        if (calls_.lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) return path;
    }
    return std::nullopt;
}

void GNUstepStoreInspection::examineList(const std::string& path, std::size_t longest,
                                         std::vector<StoreFinding>& findings) {
    struct stat status {};
    if (calls_.stat(path.c_str(), &status) != 0) {
        if (errno == ENOTDIR) {
            findings.push_back({Problem::damaged, fileAbove(path)});
        } else if (errno != ENOENT) {
            findings.push_back({Problem::unreadable, posix::folderOf(path)});
        }
        return;
    }
    if (status.st_uid != geteuid()) findings.push_back({Problem::foreign, path});
    if ((status.st_mode & othersBits) != 0) findings.push_back({Problem::readableByOthers, path});
    if (const auto problem = problemOf(path, status, longest)) findings.push_back({*problem, path});
}

/// What stands where a folder above `path` should be.
std::string GNUstepStoreInspection::fileAbove(const std::string& path) {
    std::string above = posix::folderOf(path);
    struct stat status {};
    while (calls_.stat(above.c_str(), &status) != 0 && errno == ENOTDIR) above = posix::folderOf(above);
    return above;
}

/// The domain of all programs: what is missing in the codec's is read from there. Who may read it is not for us to say.
void GNUstepStoreInspection::examineWhetherHidden(const std::string& path, std::vector<StoreFinding>& findings) {
    struct stat status {};
    if (calls_.stat(path.c_str(), &status) != 0) return;
    if (const auto problem = problemOf(path, status, largestPropertyList)) findings.push_back({*problem, path});
}

/// What keeps the list from being read, if anything.
std::optional<Problem> GNUstepStoreInspection::problemOf(const std::string& path, const struct stat& status,
                                                         std::size_t longest) {
    if (!S_ISREG(status.st_mode)) return Problem::damaged;
    if (status.st_size > static_cast<off_t>(longest)) return Problem::tooLong;
    if (status.st_size == 0 && path == places_.record) return std::nullopt;
    auto bytes = posix::contentsOfFile(calls_, path, longest);
    if (!bytes) return Problem::unreadable;
    const auto list = PropertyList::parse(std::move(*bytes));
    if (!list) return Problem::damaged;
    // A list in the binary format can be many times longer once it is XML.
    return list->bytes().size() > longest ? std::optional(Problem::tooLong) : std::nullopt;
}

void GNUstepStoreInspection::findFilesSetAside(const std::string& path, std::vector<StoreFinding>& findings) {
    const std::string folder = posix::folderOf(path);
    const std::string start = posix::nameOf(path).append(setAsideMark);
    std::vector<std::string> names;
    calls_.listFolder(folder.c_str(), names);
    std::sort(names.begin(), names.end());
    for (const auto& name : names) {
        if (!name.starts_with(start)) continue;
        findings.push_back({Problem::setAside, std::string(folder).append("/").append(name)});
    }
}

void GNUstepStoreInspection::findUnfinishedFiles(const std::string& folder, std::vector<StoreFinding>& findings) {
    posix::visitLeftovers(calls_, folder, [&](const std::string& path) {
        findings.push_back({Problem::unfinished, path});
    });
}

}  // namespace vantrel::gnustep
