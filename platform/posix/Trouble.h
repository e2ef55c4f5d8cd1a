#pragma once

#include <string>

namespace vantrel::posix {

/// What went wrong, and where: `error` is an `errno`, `path` what a person has to look at.
struct Trouble {
    int error;
    std::string path;
};

/// An English sentence without a full stop that names the file, the reason, and the full path that the reason is about:
///
///     “Looks.txt” couldn’t be moved to “Folder” because this already exists: /…/Folder/Looks.txt
///
/// `subject` is the file's path, and `predicate` "couldn’t be moved to “Folder”".
std::string sentence(const std::string& subject, const std::string& predicate, const Trouble& trouble);

/// The last part of a path.
std::string nameOf(const std::string& path);

}  // namespace vantrel::posix
