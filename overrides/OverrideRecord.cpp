#include "overrides/OverrideRecord.h"

#include <cerrno>

#include "platform/posix/FileContents.h"
#include "platform/posix/Folders.h"
#include "platform/posix/ReplaceFile.h"

namespace vantrel {

namespace {

class RecordMetadata : public Metadata {
public:
    explicit RecordMetadata(gnustep::PropertyList entries) : entries(std::move(entries)) {}

    std::optional<std::int32_t> objectForKey(std::string_view key) const override { return entries.intValue(key); }
    void setObjectForKey(std::int32_t value, std::string_view key) override { entries.setInteger(key, value); }

    gnustep::PropertyList entries;
};

class RecordMetadataDictionary : public MetadataDictionary {
public:
    explicit RecordMetadataDictionary(OverrideRecord record) : record_(std::move(record)) {}

    std::unique_ptr<Metadata> metadata() override { return std::make_unique<RecordMetadata>(record_.entries()); }

    void setMetadata(std::unique_ptr<Metadata> metadata) override {
        record_.entries() = std::move(static_cast<RecordMetadata&>(*metadata).entries);
    }

    void addObjectWithKey(std::int32_t value, std::string_view key) override {
        record_.entries().setInteger(key, value);
    }

    bool writeToOverride() override { return record_.write(); }

private:
    OverrideRecord record_;
};

}  // namespace

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

std::unique_ptr<MetadataDictionary> OverrideRecordClass::initFromOverride() {
    auto record = OverrideRecord::load(folder_, calls_);
    if (!record) return nullptr;
    return std::make_unique<RecordMetadataDictionary>(std::move(*record));
}

}  // namespace vantrel
