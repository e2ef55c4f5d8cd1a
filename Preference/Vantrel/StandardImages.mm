#import "Preference/Vantrel/StandardImages.h"

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

namespace vantrel {

namespace {

struct StandardImage {
    char name[20];
    char file[20];
};

// What the pane's controls show. Where the columns differ, GNUstep's Images/nsmapping.strings leads to the name.
const StandardImage standardImages[] = {
    {"GSSwitch", "common_SwitchOff"},
    {"GSSwitchSelected", "common_SwitchOn"},
    {"GSRadio", "common_RadioOff"},
    {"GSRadioSelected", "common_RadioOn"},
    {"GSMenuArrow", "common_3DArrowRight"},
    {"GSMenuSelected", "common_2DCheckMark"},
    {"GSMenuMixed", "common_2DDash"},
    {"common_3DArrowDown", "common_3DArrowDown"},
    {"common_3DArrowLeft", "common_3DArrowLeft"},
    {"common_3DArrowUp", "common_3DArrowUp"},
    {"common_Nibble", "common_Nibble"},
    {"common_ret", "common_ret"},
};

/// The image in the first library that has the file; nil if none has.
NSImage *imageFromLibraries(NSArray *libraries, const char *file) {
    NSString *place = [NSString stringWithFormat:@"Images/%s.tiff", file];
    for (NSUInteger i = 0; i < [libraries count]; ++i) {
        NSString *path = [[libraries objectAtIndex:i] stringByAppendingPathComponent:place];
        NSImage *image = [[[NSImage alloc] initByReferencingFile:path] autorelease];
        if (image) return image;
    }
    return nil;
}

}  // namespace

void registerStandardImages() {
    if ([[[GSTheme theme] bundle] pathForResource:@"ThemeImages" ofType:nil]) return;
    NSArray *libraries = NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSAllDomainsMask, YES);
    // An image keeps its name and the name its image; if there is one of that name, nothing happens.
    for (const auto &[name, file] : standardImages) {
        [imageFromLibraries(libraries, file) setName:[NSString stringWithUTF8String:name]];
    }
}

}  // namespace vantrel
