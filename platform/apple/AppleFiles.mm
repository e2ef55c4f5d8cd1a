#import "platform/apple/AppleFiles.h"

#import <Foundation/Foundation.h>
#include <errno.h>
#include <sys/stat.h>

#import "platform/cocoa/CocoaText.h"

namespace vantrel::apple {

using cocoa::toNSString;
using cocoa::toUTF8;

namespace {

constexpr unsigned long permissionBits = S_IRWXU | S_IRWXG | S_IRWXO;

NSFileManager *manager() {
    return [NSFileManager defaultManager];
}

/// A whole number that fits is one, however it is stored.
Number numberFrom(NSNumber *number) {
    const long value = [number longValue];
    if (![number isEqual:[NSNumber numberWithLong:value]]) return {};
    return {value};
}

PreferenceValue valueFrom(id object) {
    if ([object isKindOfClass:[NSString class]]) return toUTF8(object);
    if (![object isKindOfClass:[NSNumber class]]) return OtherType{};
    // In a property list, numbers are wider than Booleans.
    if (*[object objCType] == *@encode(BOOL)) return [object boolValue] != NO;
    return numberFrom(object);
}

/// The entries of what may be a dictionary.
std::optional<PropertyListEntries> entriesOf(id list) {
    if (![list isKindOfClass:[NSDictionary class]]) return std::nullopt;
    PropertyListEntries entries;
    NSEnumerator *keys = [list keyEnumerator];
    while (NSString *key = [keys nextObject]) entries.emplace(toUTF8(key), valueFrom([list objectForKey:key]));
    return entries;
}

FileFailure failure(BOOL succeeded, NSError *error) {
    if (succeeded) return std::nullopt;
    return toUTF8([error localizedDescription]);
}

/// What the system says of an error of its own, an `errno`, and where it is.
FileFailure refusal(int error, NSString *path) {
    NSError *refused = [NSError errorWithDomain:NSPOSIXErrorDomain code:error userInfo:nil];
    return toUTF8([refused localizedDescription]) + ": " + toUTF8(path);
}

/// What stands at the path itself, links not followed; nil for nothing.
NSDictionary *attributesAt(NSString *path) {
    return [manager() attributesOfItemAtPath:path error:nullptr];
}

FileFailure move(NSString *from, NSString *to) {
    // Asked whether something is there, it would follow a link.
    if (attributesAt(to)) return refusal(EEXIST, to);
    NSError *error = nil;
    const BOOL moved = [manager() moveItemAtPath:from toPath:to error:&error];
    return failure(moved, error);
}

/// Makes the copy at a place where nothing is; a copy that failed may be left there in part.
FileFailure fill(NSString *original, NSDictionary *itsAttributes, NSString *copy) {
    NSError *error = nil;
    if (![manager() copyItemAtPath:original toPath:copy error:&error]) return failure(NO, error);
    const auto mode = static_cast<mode_t>([itsAttributes filePosixPermissions] & permissionBits);
    return chmod([copy fileSystemRepresentation], mode) == 0 ? std::nullopt : refusal(errno, copy);
}

}  // namespace

std::optional<PropertyListEntries> ApplePropertyLists::dictionaryWithContentsOfFile(const std::string &path) {
    return entriesOf([NSDictionary dictionaryWithContentsOfFile:toNSString(path)]);
}

std::optional<PropertyListEntries> ApplePropertyLists::dictionaryWithData(std::string_view bytes) {
    NSData *data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    return entriesOf([NSPropertyListSerialization propertyListWithData:data
                                                               options:NSPropertyListImmutable
                                                                format:nullptr
                                                                 error:nullptr]);
}

/// Foundation's reader takes all other characters as they are.
std::string ApplePropertyLists::xmlText(std::string_view text) {
    std::string xml;
    for (const char character : text) {
        if (character == '&') {
            xml += "&amp;";
        } else if (character == '<') {
            xml += "&lt;";
        } else if (character == '>') {
            xml += "&gt;";
        } else if (character == '\r') {
            xml += "&#13;";
        } else {
            xml += character;
        }
    }
    return xml;
}

bool AppleFiles::fileExistsAtPath(const std::string &path) {
    // A version record can hold any text, which becomes part of a path; the system would read it up to its first zero,
    // and has no form for half a surrogate pair.
    NSString *item = toNSString(path);
    const bool canBeAPath =
        path.find('\0') == std::string::npos && [item canBeConvertedToEncoding:NSUTF8StringEncoding];
    return canBeAPath && [manager() fileExistsAtPath:item];
}

bool AppleFiles::contentsEqualAtPath(const std::string &one, const std::string &other) {
    NSData *content = [NSData dataWithContentsOfFile:toNSString(one)];
    return content && [content isEqualToData:[NSData dataWithContentsOfFile:toNSString(other)]];
}

FileFailure AppleFiles::moveItemAtPath(const std::string &from, const std::string &to) {
    return move(toNSString(from), toNSString(to));
}

FileFailure AppleFiles::copyItemAtPath(const std::string &from, const std::string &to) {
    NSString *original = [toNSString(from) stringByResolvingSymlinksInPath];
    NSDictionary *attributes = attributesAt(original);
    if (attributes && ![[attributes fileType] isEqual:NSFileTypeRegular]) {
        return refusal([[attributes fileType] isEqual:NSFileTypeDirectory] ? EISDIR : ENODEV, original);
    }
    NSString *name = [@".Vantrel-" stringByAppendingString:[[NSProcessInfo processInfo] globallyUniqueString]];
    NSString *copy = [[toNSString(to) stringByDeletingLastPathComponent] stringByAppendingPathComponent:name];
    auto failure = fill(original, attributes, copy);
    if (!failure) failure = move(copy, toNSString(to));
    if (failure) [manager() removeItemAtPath:copy error:nullptr];
    return failure;
}

FileFailure AppleFiles::removeItemAtPath(const std::string &path) {
    NSString *item = toNSString(path);
    if ([[attributesAt(item) fileType] isEqual:NSFileTypeDirectory]) return refusal(EISDIR, item);
    NSError *error = nil;
    const BOOL removed = [manager() removeItemAtPath:item error:&error];
    return failure(removed, error);
}

}  // namespace vantrel::apple
