#include "overrides/KVRXMetadataDictionary/OverrideRecord.h"

#include <cerrno>

#include "platform/posix/FileContents.h"
#include "platform/posix/Folders.h"
#include "platform/posix/ReplaceFile.h"

namespace vantrel {

std::optional<OverrideRecord> OverrideRecord::load(const std::string& applicationSupportFolder,
                                                   posix::SystemCalls& calls) {
    OverrideRecord record(applicationSupportFolder + "/Vantrel/OverrideMetadata.plist", calls);
    struct stat status;
    if (calls.stat(record.path_.c_str(), &status) != 0 && errno == ENOENT) return record;

    const auto bytes = posix::contentsOfFile(calls, record.path_, gnustep::largestPropertyList);
    auto entries = bytes ? gnustep::PropertyList::parse(*bytes) : std::nullopt;
    if (!entries) return std::nullopt;
    record.entries_ = std::move(*entries);
    return record;
}

bool OverrideRecord::write() {
    const std::string folder = path_.substr(0, path_.rfind('/'));
    return posix::makeFolders(calls_, folder) == 0 && posix::replaceFile(calls_, path_, entries_.toXML()) == 0;
}

}  // namespace vantrel
