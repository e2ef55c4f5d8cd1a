#import "platform/apple/MakersMetadataDictionary.h"

#include <dlfcn.h>
#include <stdlib.h>

#include <memory>
#include <string_view>

namespace vantrel::apple {

namespace {

constexpr const char *libraryPath = "/Library/Application Support/Vantrel/Libs/KVRXMetadataDictionary.dylib";

struct Free {
    void operator()(char *text) const { free(text); }
};

/// Whether two paths, their links followed, name one file.
bool sameFile(const char *one, const char *other) {
    const std::unique_ptr<char, Free> first(realpath(one, nullptr));
    const std::unique_ptr<char, Free> second(realpath(other, nullptr));
    return first && second && std::string_view(first.get()) == second.get();
}

}  // namespace

Class makersMetadataDictionary() {
    if (!dlopen(libraryPath, RTLD_NOW | RTLD_LOCAL)) return Nil;
    const Class found = NSClassFromString(@"MetadataDictionary");

    // The loader prefers a file of the same name in DYLD_LIBRARY_PATH, and another library may have brought a class
    // of the same name before: the class counts only if it lies in the library that stands at the path.
    Dl_info image{};
    if (!found || !dladdr(static_cast<const void *>(found), &image) || !sameFile(image.dli_fname, libraryPath)) {
        return Nil;
    }
    return found;
}

}  // namespace vantrel::apple
