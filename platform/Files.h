#pragma once

#include <optional>
#include <string>

namespace vantrel {

/// Why a file operation failed, in words that a person can act on; nothing when it succeeded.
using FileFailure = std::optional<std::string>;

/// Whole files, by absolute path in UTF-8.
class Files {
public:
    /// Whether something exists at `path`.
    virtual bool fileExistsAtPath(const std::string& path) = 0;

    /// Whether both paths name files, or links to files, of the same content.
    virtual bool contentsEqualAtPath(const std::string& one, const std::string& other) = 0;

    /// Renames. Fails, with nothing changed, when the source is missing or anything stands at the destination:
    /// it never overwrites.
    virtual FileFailure moveItemAtPath(const std::string& from, const std::string& to) = 0;

    /// Copies content and mode. Fails when the source is missing or anything stands at the destination; a copy
    /// that failed leaves nothing at the destination.
    virtual FileFailure copyItemAtPath(const std::string& from, const std::string& to) = 0;

    /// Deletes. Fails when nothing is at `path` or it can't be removed.
    virtual FileFailure removeItemAtPath(const std::string& path) = 0;

protected:
    ~Files() = default;
};

}  // namespace vantrel
