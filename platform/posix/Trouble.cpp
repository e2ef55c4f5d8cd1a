#include "platform/posix/Trouble.h"

#include <array>
#include <cerrno>

namespace vantrel::posix {
namespace {

struct Reason {
    int error;
    char text[64];
};

/// The reasons in our own words: the system's own come in the language of the process, and many are obscure.
constexpr auto reasons = std::to_array<Reason>({
    {EACCES, "permission is denied here"},
    {EBADMSG, "this isn’t a property list"},
    {EBUSY, "this is in use"},
    {EDQUOT, "your share of the disk is used up here"},
    {EEXIST, "this already exists"},
    {EFBIG, "the file is too large for the disk here"},
    {EINVAL, "the disk here can’t rename without the risk of overwriting"},
    {EIO, "the disk reports an error here"},
    {EISDIR, "this is a folder"},
    {ELOOP, "a link leads here that can’t be followed"},
    {EMFILE, "too many files are open to use this one"},
    {ENAMETOOLONG, "this path or a name in it is too long"},
    {ENFILE, "too many files are open to use this one"},
    {ENODEV, "this is no ordinary file"},
    {ENOENT, "this doesn’t exist"},
    {ENOMEM, "too little memory is free to use this"},
    {ENOSPC, "the disk is full here"},
    {ENOSYS, "the system can’t rename without the risk of overwriting this"},
    {ENOTDIR, "a part of this path is no folder"},
    {EOVERFLOW, "this is too long"},
    {EPERM, "the system doesn’t permit it here"},
    {EROFS, "the disk here can only be read"},
    {ESTALE, "the disk here has been exchanged or lost"},
    {EXDEV, "this is on another disk"},
});

std::string reasonFor(int error) {
    for (const auto& reason : reasons) {
        if (reason.error == error) return reason.text;
    }
    return "the system reports error " + std::to_string(error) + " here";
}

}  // namespace

std::string sentence(const std::string& subject, const std::string& predicate, const Trouble& trouble) {
    return "“" + nameOf(subject) + "” " + predicate + " because " + reasonFor(trouble.error) + ": " + trouble.path;
}

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace vantrel::posix
