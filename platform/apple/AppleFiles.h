#pragma once

#include "platform/Files.h"
#include "platform/PropertyLists.h"

namespace vantrel::apple {

/// Files through the default NSFileManager, held to one file at a time: left alone, it deletes a folder with all that
/// is in it, copies one whole, and copies a link as a link. What a failed operation says is the system's own text for
/// the error, in the user's language.
class AppleFiles : public Files {
public:
    /// Follows links: a link that leads nowhere doesn't exist.
    bool fileExistsAtPath(const std::string& path) override;
    bool contentsEqualAtPath(const std::string& one, const std::string& other) override;

    /// Moves files, folders and links (never what they lead to). A link that leads nowhere counts as something there.
    FileFailure moveItemAtPath(const std::string& from, const std::string& to) override;

    /// Copies one file. The copy is made under a hidden name (".Vantrel-" and a unique text) in its folder and then
    /// given its own: nobody sees a part of it. Only a process killed meanwhile leaves that hidden file behind.
    ///
    /// A link is followed and what it leads to is copied: a relative one would lead elsewhere from its new folder. The
    /// copy gets the nine permission bits, but neither set-user-ID nor set-group-ID: it belongs to whoever made it.
    FileFailure copyItemAtPath(const std::string& from, const std::string& to) override;

    /// Deletes a file, or a link and not what it leads to. A folder is not deleted.
    FileFailure removeItemAtPath(const std::string& path) override;
};

/// Property lists as Foundation reads them.
class ApplePropertyLists : public PropertyLists {
public:
    std::optional<PropertyListEntries> dictionaryWithContentsOfFile(const std::string& path) override;
    std::optional<PropertyListEntries> dictionaryWithData(std::string_view bytes) override;
    std::string xmlText(std::string_view text) override;
};

}  // namespace vantrel::apple
