#import "platform/apple/AppleStoreInspection.h"

#import <Foundation/Foundation.h>
#include <sys/stat.h>

#import "platform/cocoa/CocoaText.h"

namespace vantrel::apple {

std::vector<StoreFinding> AppleStoreInspection::findings(const std::vector<std::string> &otherFolders) {
    (void)otherFolders;
    using Problem = StoreFinding::Problem;
    NSString *library =
        [NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSUserDomainMask, YES) objectAtIndex:0];
    NSString *name = [cocoa::toNSString(domain_) stringByAppendingPathExtension:@"plist"];
    NSString *path = [[library stringByAppendingPathComponent:@"Preferences"] stringByAppendingPathComponent:name];
    NSDictionary *attributes = [[NSFileManager defaultManager] attributesOfItemAtPath:path error:nullptr];
    if (!attributes) return {};

    std::vector<StoreFinding> findings;
    const auto add = [&](Problem problem) { findings.push_back({problem, cocoa::toUTF8(path)}); };
    const bool isForeign = ![[attributes fileOwnerAccountName] isEqual:NSUserName()];
    if (isForeign) add(Problem::foreign);
    if (([attributes filePosixPermissions] & (S_IRWXG | S_IRWXO)) != 0) add(Problem::readableByOthers);
    NSData *data = [NSData dataWithContentsOfFile:path];
    if (!data) {
        add(Problem::unreadable);
    } else if (![NSDictionary dictionaryWithContentsOfFile:path]) {
        add(Problem::damaged);
    }
    return findings;
}

}  // namespace vantrel::apple
