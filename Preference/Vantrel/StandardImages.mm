#import "Preference/Vantrel/StandardImages.h"

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

#include "platform/ShortText.h"
#import "platform/cocoa/CocoaText.h"

using vantrel::cocoa::toNSString;
using vantrel::cocoa::toUTF8;

/// Draws itself by way of a sheet that all of these images share. GNUstep draws an image by way of a window of its own,
/// which nobody sees; to make one takes ten answers of the display, and each is told the application's icon.
@interface VantrelStandardImage : NSImage {
    NSRect place;
}
@end

@implementation VantrelStandardImage

/// Where an image is in the sheet; empty if there is no room for it.
static NSRect placeIn(NSImage *sheet, VantrelStandardImage *image) {
    static CGFloat end = 0;
    const NSRect next = {NSMakePoint(end, 0), [image size]};
    const NSRect room = {NSZeroPoint, [sheet size]};
    if (NSIsEmptyRect(image->place) && NSContainsRect(room, next)) {
        [sheet lockFocus];
        [[image bestRepresentationForDevice:nil] drawInRect:next];
        [sheet unlockFocus];
        image->place = next;
        end = NSMaxX(next);
    }
    return image->place;
}

- (void)drawInRect:(NSRect)target
          fromRect:(NSRect)part
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)opacity
    respectFlipped:(BOOL)keepsUpright
             hints:(NSDictionary *)hints {
    static NSImage *sheet = [[NSImage alloc] initWithSize:NSMakeSize(512, 16)];
    // On paper, and where only a part of the image is wanted, there is nothing to gain.
    const bool isWhole = NSIsEmptyRect(part) && !NSIsEmptyRect(target);
    const bool isOnScreen = [[NSGraphicsContext currentContext] isDrawingToScreen];
    const NSRect inSheet = isWhole && isOnScreen ? placeIn(sheet, self) : NSZeroRect;
    if (NSIsEmptyRect(inSheet)) {
        [super drawInRect:target
                  fromRect:part
                 operation:operation
                  fraction:opacity
            respectFlipped:keepsUpright
                     hints:hints];
    } else {
        [sheet drawInRect:target
                  fromRect:inSheet
                 operation:operation
                  fraction:opacity
            respectFlipped:keepsUpright
                     hints:hints];
    }
}

/// An archive has the image by its name alone, for whoever reads it.
- (Class)classForCoder {
    return [NSImage class];
}

@end

namespace vantrel {

namespace {

struct StandardImage {
    ShortText name;
    ShortText file;
};

// What the pane's controls show. Where the columns differ, GNUstep's Images/nsmapping.strings leads to the name.
constexpr StandardImage standardImages[] = {
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
NSImage *imageFromLibraries(NSArray *libraries, std::string_view file) {
    for (NSUInteger i = 0; i < [libraries count]; ++i) {
        const std::string folder = toUTF8([libraries objectAtIndex:i]) + "/Images/";
        NSString *path = toNSString(folder + std::string(file) + ".tiff");
        NSImage *image = [[[VantrelStandardImage alloc] initByReferencingFile:path] autorelease];
        if (image) return image;
    }
    return nil;
}

}  // namespace

void registerStandardImages() {
    if ([[[GSTheme theme] bundle] pathForResource:toNSString("ThemeImages") ofType:nil]) return;
    NSArray *libraries = NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSAllDomainsMask, YES);
    // An image keeps its name and the name its image; if there is one of that name, nothing happens.
    for (const auto &[name, file] : standardImages) {
        [imageFromLibraries(libraries, file) setName:toNSString(name)];
    }
}

}  // namespace vantrel
