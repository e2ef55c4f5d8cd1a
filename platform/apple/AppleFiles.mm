#import "platform/apple/AppleFiles.h"

#import <Foundation/Foundation.h>

#import "platform/cocoa/CocoaText.h"

namespace vantrel::apple {

using cocoa::toNSString;
using cocoa::toUTF8;

namespace {

FileFailure failure(BOOL succeeded, NSError *error) {
    if (succeeded) return std::nullopt;
    return toUTF8([error localizedDescription]);
}

}  // namespace

std::optional<StringEntries> ApplePropertyLists::dictionaryWithContentsOfFile(const std::string &path) {
    NSDictionary *dictionary = [NSDictionary dictionaryWithContentsOfFile:toNSString(path)];
    if (!dictionary) return std::nullopt;
    StringEntries entries;
    NSEnumerator *keys = [dictionary keyEnumerator];
    while (NSString *key = [keys nextObject]) {
        id value = [dictionary objectForKey:key];
        if ([value isKindOfClass:[NSString class]]) entries.emplace(toUTF8(key), toUTF8(value));
    }
    return entries;
}

bool AppleFiles::fileExistsAtPath(const std::string &path) {
    return [[NSFileManager defaultManager] fileExistsAtPath:toNSString(path)];
}

FileFailure AppleFiles::moveItemAtPath(const std::string &from, const std::string &to) {
    NSError *error = nil;
    const BOOL moved = [[NSFileManager defaultManager] moveItemAtPath:toNSString(from)
                                                               toPath:toNSString(to)
                                                                error:&error];
    return failure(moved, error);
}

FileFailure AppleFiles::copyItemAtPath(const std::string &from, const std::string &to) {
    NSError *error = nil;
    const BOOL copied = [[NSFileManager defaultManager] copyItemAtPath:toNSString(from)
                                                                toPath:toNSString(to)
                                                                 error:&error];
    return failure(copied, error);
}

FileFailure AppleFiles::removeItemAtPath(const std::string &path) {
    NSError *error = nil;
    const BOOL removed = [[NSFileManager defaultManager] removeItemAtPath:toNSString(path) error:&error];
    return failure(removed, error);
}

}  // namespace vantrel::apple
