#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Log.h"
#include "platform/Preferences.h"
#include "platform/gnustep/CachedPropertyList.h"
#include "platform/gnustep/DefaultsLock.h"
#include "platform/gnustep/PropertyList.h"
#include "platform/posix/Patience.h"
#include "platform/posix/PersistingFailure.h"
#include "platform/posix/SystemCalls.h"
#include "platform/posix/Trouble.h"

namespace vantrel::gnustep {

/// What stands between the name of a damaged file and its time of change in its second name.
inline constexpr char setAsideMark[] = ".unreadable-";

/// One domain: its file in the defaults folder, which other processes read and write as well, and the changes made here
/// that haven't reached it yet.
class DomainFile {
public:
    /// `folder` is the defaults folder, an absolute path, with its `lock`; `name` the domain's, which is its file's
    /// name without the extension.
    DomainFile(posix::SystemCalls& calls, Log& log, DefaultsLock& lock, const std::string& folder,
               std::string_view name);

    /// What the file holds, with the changes made here since. The file is looked at once for all calls with the same
    /// number in a row.
    PreferenceValue value(std::string_view key, unsigned long sequence);

    /// Changes nothing but what is read here, until `synchronize`.
    void setValue(std::string_view key, const NewPreferenceValue& value);

    /// The same with what `change` makes of the value that is there by then.
    void update(std::string_view key, const PreferenceChange& change);

    /// Carries the changes made here out on what the file holds, in their order, and leaves all other entries as they
    /// are. Doesn't write when the file holds all that already. A file that holds something else than a property list
    /// is kept under another name. Waits for the lock with `patience` and goes on without it when that is over.
    ///
    /// False when the changes couldn't be made lasting: the next call tries again. The log hears of that, and of the
    /// next success.
    bool synchronize(unsigned long sequence, posix::Patience& patience);

private:
    /// The file's next content, on its way there.
    struct Next;

    std::optional<posix::Trouble> store(unsigned long sequence, posix::Patience& patience);
    void look(unsigned long sequence);
    std::optional<posix::Trouble> prepare(std::unique_ptr<Next>& next);
    std::optional<PropertyListChanges> changesToMake() const;
    void takeLock(posix::Patience& patience);
    std::optional<posix::Trouble> place(Next& next);
    int keepAside(const std::string& path);

    posix::SystemCalls& calls_;
    Log& log_;
    DefaultsLock& lock_;
    std::string folder_;
    std::string path_;
    CachedPropertyList file_;
    /// The sequence that `file_` was last looked at for.
    unsigned long sequence_ = 0;
    /// What was changed here and isn't in the file yet, in its order.
    std::vector<std::pair<std::string, PreferenceChange>> pending_;
    /// Whether the file may fall back to an older one in a power cut, because it couldn't be written through.
    bool mustReplaceAgain_ = false;
    posix::PersistingFailure failure_;
    posix::PersistingFailure lockFailure_;
};

}  // namespace vantrel::gnustep
