#pragma once

#include "platform/Files.h"
#include "platform/PropertyLists.h"

namespace vantrel::apple {

/// Files through the default NSFileManager, whose move and copy refuse a destination that exists.
class AppleFiles : public Files {
public:
    bool fileExistsAtPath(const std::string& path) override;
    FileFailure moveItemAtPath(const std::string& from, const std::string& to) override;
    FileFailure copyItemAtPath(const std::string& from, const std::string& to) override;
    FileFailure removeItemAtPath(const std::string& path) override;
};

/// Property lists as Foundation reads them.
class ApplePropertyLists : public PropertyLists {
public:
    std::optional<StringEntries> dictionaryWithContentsOfFile(const std::string& path) override;
};

}  // namespace vantrel::apple
