#import "Preference/Vantrel/StandardImages.h"

#import <GNUstepGUI/GSTheme.h>
#include <gmock/gmock.h>
#import <objc/runtime.h>

#include <string>
#include <vector>

#import "tests/bundle/Host.h"

@interface UprightView : NSView
@end

@implementation UprightView
- (BOOL)isFlipped {
    return YES;
}
@end

namespace vantrel {
namespace {

using testing::IsEmpty;

/// The names by which AppKit asks for the images of what is in the pane.
const char *const names[] = {"NSSwitch",         "NSHighlightedSwitch", "NSRadioButton",    "NSHighlightedRadioButton",
                             "NSMenuArrow",      "NSMenuCheckmark",     "NSMenuMixedState", "common_3DArrowDown",
                             "common_3DArrowUp", "common_3DArrowLeft",  "common_Nibble",    "common_ret"};

NSImage *imageNamed(const char *name) {
    return [NSImage imageNamed:[NSString stringWithUTF8String:name]];
}

std::string fileOf(NSImage *image) {
    return [object_getIvar(image, class_getInstanceVariable([NSImage class], "_fileName")) UTF8String];
}

/// What GNUstep has searched for through files.
std::vector<std::string> searched;
IMP search;

id searchAndTell(id bundle, SEL selector, NSString *name) {
    searched.emplace_back([name UTF8String]);
    return reinterpret_cast<id (*)(id, SEL, NSString *)>(search)(bundle, selector, name);
}

/// Writes an image of a size that no standard image has, and returns its file.
constexpr CGFloat unusualSize = 31;

NSImage *unusualImage() {
    NSBitmapImageRep *bitmap = [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                                        pixelsWide:unusualSize
                                                                        pixelsHigh:unusualSize
                                                                     bitsPerSample:8
                                                                   samplesPerPixel:3
                                                                          hasAlpha:NO
                                                                          isPlanar:NO
                                                                    colorSpaceName:NSCalibratedRGBColorSpace
                                                                       bytesPerRow:0
                                                                      bitsPerPixel:0] autorelease];
    NSImage *image = [[[NSImage alloc] initWithSize:NSMakeSize(unusualSize, unusualSize)] autorelease];
    [image addRepresentation:bitmap];
    return image;
}

/// A theme that has nothing but an unusual image of an empty check box.
GSTheme *themeWithImage() {
    NSString *images = host::inHome("/Library/Themes/Unusual.theme/Resources/ThemeImages");
    [[NSFileManager defaultManager] createDirectoryAtPath:images
                              withIntermediateDirectories:YES
                                               attributes:nil
                                                    error:nullptr];
    [[unusualImage() TIFFRepresentation] writeToFile:[images stringByAppendingPathComponent:@"common_SwitchOff.tiff"]
                                          atomically:YES];
    GSTheme *theme = [GSTheme loadThemeNamed:@"Unusual"];
    EXPECT_NE(theme, nil);
    return theme;
}

NSWindow *windowWith(NSView *view) {
    NSWindow *window = [[NSWindow alloc] initWithContentRect:[view bounds]
                                                   styleMask:NSTitledWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    [window setReleasedWhenClosed:NO];
    [[window contentView] addSubview:view];
    return window;
}

void openPane() {
    NSPreferencePane *pane = [[host::principalClass() alloc] initWithBundle:host::bundle()];
    NSWindow *window = windowWith([pane loadMainView]);
    [window orderFront:nil];
    [window display];
}

/// What is on the display after a view has drawn an image.
std::string drawn(NSImage *image, NSView *view, CGFloat opacity) {
    [view lockFocus];
    [[NSColor yellowColor] set];
    NSRectFill([view bounds]);
    [image drawInRect:NSMakeRect(3, 5, [image size].width, [image size].height)
              fromRect:NSZeroRect
             operation:NSCompositeSourceOver
              fraction:opacity
        respectFlipped:YES
                 hints:nil];
    NSBitmapImageRep *seen = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    [view unlockFocus];
    return {reinterpret_cast<const char *>([seen bitmapData]), static_cast<std::size_t>([seen bytesPerPlane])};
}

/// Each test starts without the images.
class StandardImages : public testing::Test {
   protected:
    StandardImages() {
        for (const char *name : names) [imageNamed(name) setName:nil];
        Method method = class_getInstanceMethod([NSBundle class], @selector(pathForImageResource:));
        search = method_setImplementation(method, reinterpret_cast<IMP>(searchAndTell));
        searched.clear();
    }

    ~StandardImages() override {
        [GSTheme setTheme:nil];
        method_setImplementation(class_getInstanceMethod([NSBundle class], @selector(pathForImageResource:)), search);
        [pool_ release];
    }

   private:
    NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
};

TEST_F(StandardImages, AreFoundWithoutASearch) {
    registerStandardImages();
    for (const char *name : names) EXPECT_NE(imageNamed(name), nil) << name;
    EXPECT_THAT(searched, IsEmpty());
}

TEST_F(StandardImages, AreThoseThatGNUstepFinds) {
    std::vector<std::string> found;
    for (const char *name : names) {
        found.push_back(fileOf(imageNamed(name)));
        [imageNamed(name) setName:nil];
    }
    registerStandardImages();
    for (std::size_t i = 0; i < std::size(names); ++i) EXPECT_EQ(fileOf(imageNamed(names[i])), found[i]) << names[i];
}

TEST_F(StandardImages, LeaveANameToTheImageThatHasIt) {
    NSImage *image = unusualImage();
    ASSERT_TRUE([image setName:@"GSSwitch"]);
    registerStandardImages();
    EXPECT_EQ(imageNamed("NSSwitch"), image);
    [image setName:nil];
}

TEST_F(StandardImages, LeaveANameToTheTheme) {
    [GSTheme setTheme:themeWithImage()];
    registerStandardImages();
    EXPECT_EQ([imageNamed("NSSwitch") size].width, unusualSize);
    EXPECT_NE([imageNamed("NSHighlightedSwitch") size].width, unusualSize);
}

TEST_F(StandardImages, GiveWayToAThemeThatIsChosenLater) {
    registerStandardImages();
    const CGFloat usualSize = [imageNamed("NSSwitch") size].width;
    [GSTheme setTheme:themeWithImage()];
    EXPECT_EQ([imageNamed("NSSwitch") size].width, unusualSize);
    [GSTheme setTheme:nil];
    EXPECT_EQ([imageNamed("NSSwitch") size].width, usualSize);
}

TEST_F(StandardImages, LookAsGNUstepDrawsThem) {
    registerStandardImages();
    const NSRect frame = NSMakeRect(0, 0, 40, 40);
    for (Class kind : {[NSView class], [UprightView class]}) {
        NSView *view = [[[kind alloc] initWithFrame:frame] autorelease];
        [windowWith(view) orderFront:nil];
        for (const char *name : names) {
            NSImage *image = imageNamed(name);
            NSString *file = [NSString stringWithUTF8String:fileOf(image).c_str()];
            NSImage *usual = [[[NSImage alloc] initWithContentsOfFile:file] autorelease];
            const std::string nothing = drawn(nil, view, 1);
            for (const CGFloat opacity : {1.0, 0.5}) {
                EXPECT_EQ(drawn(image, view, opacity), drawn(usual, view, opacity)) << name << ' ' << opacity;
                EXPECT_NE(drawn(image, view, opacity), nothing) << name << ' ' << opacity;
            }
        }
    }
}

TEST_F(StandardImages, SpareTheOpeningOfThePaneEverySearch) {
    openPane();
    EXPECT_THAT(searched, IsEmpty());
}

TEST_F(StandardImages, SpareTheOpeningOfThePaneAWindowForEach) {
    registerStandardImages();
    openPane();
    for (const char *name : names) {
        NSArray *representations = [imageNamed(name) representations];
        for (NSUInteger i = 0; i < [representations count]; ++i) {
            EXPECT_FALSE([[representations objectAtIndex:i] isKindOfClass:[NSCachedImageRep class]]) << name;
        }
    }
}

}  // namespace
}  // namespace vantrel

int main(int argc, char **argv) {
    return vantrel::host::runTests(argc, argv);
}
