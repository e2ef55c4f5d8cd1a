#include "platform/gnustep/GNUstepStoreInspection.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <set>

#include "platform/gnustep/DefaultsLock.h"
#include "platform/gnustep/DomainFile.h"
#include "platform/gnustep/PropertyList.h"
#include "platform/posix/FileContents.h"
#include "platform/posix/Folders.h"
#include "platform/posix/TemporaryFile.h"

namespace vantrel::gnustep {
namespace {

using Problem = StoreFinding::Problem;

constexpr mode_t othersBits = S_IRWXG | S_IRWXO;

}  // namespace

std::vector<StoreFinding> GNUstepStoreInspection::findings(const std::vector<std::string>& otherFolders) {
    std::vector<StoreFinding> findings;
    const std::string domainFile = places_.defaultsFolder + '/' + places_.domain + ".plist";
    examineList(domainFile, findings);
    examineList(places_.record, findings);
    findFilesSetAside(domainFile, findings);
    findUnfinishedFiles(places_.defaultsFolder, findings);
    findUnfinishedFiles(posix::folderOf(places_.record), findings);
    for (const auto& folder : otherFolders) findUnfinishedFiles(folder, findings);
    DefaultsLock lock(calls_, places_.defaultsFolder);
    if (lock.isAbandoned()) findings.push_back({Problem::abandonedLock, lock.path()});
    return findings;
}

void GNUstepStoreInspection::examineList(const std::string& path, std::vector<StoreFinding>& findings) {
    struct stat status {};
    if (calls_.stat(path.c_str(), &status) != 0) {
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        if (!isMissing) findings.push_back({Problem::unreadable, posix::folderOf(path)});
        return;
    }
    if (status.st_uid != geteuid()) findings.push_back({Problem::foreign, path});
    if ((status.st_mode & othersBits) != 0) findings.push_back({Problem::readableByOthers, path});
    const bool isReadable = S_ISREG(status.st_mode) && status.st_size <= static_cast<off_t>(largestPropertyList);
    const auto bytes = isReadable ? posix::contentsOfFile(calls_, path, largestPropertyList) : std::nullopt;
    if (isReadable && !bytes) {
        findings.push_back({Problem::unreadable, path});
    } else if (!bytes || !PropertyList::parse(*bytes)) {
        findings.push_back({Problem::damaged, path});
    }
}

void GNUstepStoreInspection::findFilesSetAside(const std::string& path, std::vector<StoreFinding>& findings) {
    std::error_code ignored;
    const std::string start = path + std::string(setAsideMark);
    std::set<std::string> sorted;
    for (const auto& entry : std::filesystem::directory_iterator(posix::folderOf(path), ignored)) {
        if (entry.path().string().starts_with(start)) sorted.insert(entry.path().string());
    }
    for (const auto& file : sorted) findings.push_back({Problem::setAside, file});
}

void GNUstepStoreInspection::findUnfinishedFiles(const std::string& folder, std::vector<StoreFinding>& findings) {
    posix::visitLeftovers(calls_, folder, [&](const std::string& path) {
        findings.push_back({Problem::unfinished, path});
    });
}

}  // namespace vantrel::gnustep
