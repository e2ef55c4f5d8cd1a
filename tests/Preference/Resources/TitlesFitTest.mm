#include <gtest/gtest.h>
#import <objc/runtime.h>

#include <string>
#include <vector>

#import "tests/bundle/Host.h"

namespace vantrel {
namespace {

/// How much more a cell may ask for than it gets: the rounding of a font's metrics.
constexpr CGFloat tolerance = 0.5;

std::string described(NSControl *control) {
    NSString *text = [control isKindOfClass:[NSPopUpButton class]] ? [(NSPopUpButton *)control itemTitleAtIndex:0]
                     : [control isKindOfClass:[NSButton class]]    ? [(NSButton *)control title]
                                                                   : [control stringValue];
    return [[NSString stringWithFormat:@"%@ \"%@\" in %@", [control class], text, NSStringFromRect([control frame])]
        UTF8String];
}

/// The pane's window as the interface file of one language has it, measured with the fonts of this display.
class TitlesFit : public testing::TestWithParam<const char *> {
   protected:
    TitlesFit() {
        pane_ = [[host::principalClass() alloc] initWithBundle:host::bundle()];
        NSString *file = resource(@"VantrelPref", @"gorm");
        EXPECT_TRUE([NSBundle loadNibFile:file
                        externalNameTable:[NSDictionary dictionaryWithObject:pane_ forKey:NSNibOwner]
                                 withZone:nullptr]);
        [pane_ assignMainView];
        collect([pane_ mainView]);
    }

    ~TitlesFit() override {
        [pane_ release];
        [pool_ release];
    }

    /// The path of a resource in the folder of the tested language.
    static NSString *resource(NSString *name, NSString *type) {
        NSString *language = [NSString stringWithUTF8String:GetParam()];
        NSString *path = [host::bundle() pathForResource:name ofType:type inDirectory:nil forLocalization:language];
        EXPECT_NE([path rangeOfString:[language stringByAppendingPathExtension:@"lproj"]].location, NSNotFound);
        return path;
    }

    void collect(NSView *view) {
        if ([view isKindOfClass:[NSBox class]]) boxes_.push_back((NSBox *)view);
        if ([view isKindOfClass:[NSControl class]]) {
            controls_.push_back((NSControl *)view);
            return;
        }
        for (NSUInteger i = 0; i < [[view subviews] count]; ++i) collect([[view subviews] objectAtIndex:i]);
    }

    NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
    NSPreferencePane *pane_;
    std::vector<NSControl *> controls_;
    std::vector<NSBox *> boxes_;
};

/// The cell of a pop-up asks for room for its longest item.
TEST_P(TitlesFit, NoTitleIsCut) {
    ASSERT_FALSE(controls_.empty());
    for (NSControl *control : controls_) {
        if ([control isKindOfClass:[NSMatrix class]]) {
            NSMatrix *matrix = (NSMatrix *)control;
            for (NSInteger row = 0; row < [matrix numberOfRows]; ++row) {
                NSCell *cell = [matrix cellAtRow:row column:0];
                EXPECT_LE([cell cellSize].width, [matrix cellSize].width + tolerance) << [[cell title] UTF8String];
            }
        } else if (![control isKindOfClass:[NSTextField class]] || ![(NSTextField *)control isEditable]) {
            EXPECT_LE([[control cell] cellSize].width, NSWidth([control frame]) + tolerance) << described(control);
        }
    }
}

TEST_P(TitlesFit, NoTitleOfABoxIsCut) {
    ASSERT_EQ(boxes_.size(), 6U);
    for (NSBox *box : boxes_) {
        EXPECT_LT([[box titleCell] cellSize].width, NSWidth([box frame]) - 20) << [[box title] UTF8String];
    }
}

TEST_P(TitlesFit, TheDefaultFoldersAreShownWhole) {
    NSString *file = resource(@"Localizable", @"strings");
    NSDictionary *table = [[NSString stringWithContentsOfFile:file encoding:NSUTF8StringEncoding
                                                        error:nullptr] propertyListFromStringsFileFormat];
    const std::pair<const char *, NSString *> folders[] = {{"_LUTsPath", @"KVRXLutsPath"},
                                                           {"_overridePath", @"KVRXOverridePath"}};
    for (const auto &[outlet, key] : folders) {
        ASSERT_NE([table objectForKey:key], nil);
        NSTextField *field = object_getIvar(pane_, class_getInstanceVariable([pane_ class], outlet));
        [field setStringValue:[table objectForKey:key]];
        EXPECT_LE([[field cell] cellSize].width, NSWidth([field frame]) + tolerance) << described(field);
    }
}

TEST_P(TitlesFit, NoControlLiesOverAnotherOrOutsideItsGroup) {
    for (NSControl *control : controls_) {
        EXPECT_TRUE(NSContainsRect([[control superview] bounds], [control frame])) << described(control);
        for (NSControl *other : controls_) {
            if (other == control || [other superview] != [control superview]) continue;
            EXPECT_FALSE(NSIntersectsRect([control frame], [other frame]))
                << described(control) << " and " << described(other);
        }
    }
}

TEST_P(TitlesFit, TheViewFitsTheSettingsHost) {
    EXPECT_EQ(NSWidth([[pane_ mainView] frame]), 570);
    EXPECT_LE(NSHeight([[pane_ mainView] frame]), 620);
}

TEST_P(TitlesFit, EveryCharacterHasAFontThatDrawsIt) {
    for (NSControl *control : controls_) {
        NSMutableAttributedString *text = [[[NSMutableAttributedString alloc]
            initWithString:[control toolTip] ? [control toolTip] : [control stringValue]
                attributes:[NSDictionary dictionaryWithObject:[control font] forKey:NSFontAttributeName]] autorelease];
        [text fixFontAttributeInRange:NSMakeRange(0, [text length])];
        for (NSUInteger i = 0; i < [text length]; ++i) {
            NSFont *font = [text attribute:NSFontAttributeName atIndex:i effectiveRange:nullptr];
            EXPECT_TRUE([[font coveredCharacterSet] characterIsMember:[[text string] characterAtIndex:i]])
                << [[text string] UTF8String] << " at " << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(In, TitlesFit, testing::Values("en", "de", "fr", "es", "ja"),
                         [](const auto &language) { return std::string(language.param); });

}  // namespace
}  // namespace vantrel

int main(int argc, char **argv) {
    return vantrel::host::runTests(argc, argv);
}
