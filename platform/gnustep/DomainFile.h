#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Log.h"
#include "platform/Preferences.h"
#include "platform/gnustep/CachedPropertyList.h"
#include "platform/gnustep/PropertyList.h"
#include "platform/posix/ReplaceFile.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::gnustep {

/// One domain: its file in the defaults folder, which other processes read and write as well, and the values set here
/// that haven't reached it yet.
class DomainFile {
public:
    /// `folder` is the defaults folder, an absolute path; `name` the domain's, which is its file's name without the
    /// extension.
    DomainFile(posix::SystemCalls& calls, Log& log, std::string folder, std::string_view name);

    /// The value set here and not yet synchronised, or else what the file holds now.
    PreferenceValue value(std::string_view key);

    /// Changes nothing but what is read here, until `synchronize`.
    void setValue(std::string_view key, const NewPreferenceValue& value);

    /// The same with what `change` makes of the value that is there by then.
    void update(std::string_view key, const PreferenceChange& change);

    /// Puts the values set here into the file, each under its key, and leaves all other entries as they are. Doesn't
    /// write when the file has those values already. A file that holds something else than a property list is kept
    /// under another name. False when the values couldn't be made lasting: the next call tries again.
    bool synchronize();

private:
    /// What the file lacks of the changes that were made here. Nothing where it holds all that, and for good.
    std::optional<PropertyListChanges> changesToMake() const;

    /// Renames a damaged file to a free name beside it and logs that.
    bool keepAside(const std::string& path);

    posix::SystemCalls& calls_;
    Log& log_;
    std::string folder_;
    std::string path_;
    CachedPropertyList file_;
    /// What was changed here and isn't in the file yet.
    std::map<std::string, PreferenceChange, std::less<>> pending_;
    /// Whether the file may fall back to an older one in a power cut, because it couldn't be written through.
    bool mustReplaceAgain_ = false;
};

}  // namespace vantrel::gnustep
