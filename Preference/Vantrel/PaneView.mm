#import "Preference/Vantrel/PaneView.h"

#ifdef GNUSTEP
#import "Preference/Vantrel/StandardImages.h"
#include "platform/ShortText.h"
#import "platform/cocoa/CocoaText.h"

// Those of Debian's packages with Japanese fonts. One that isn't installed is passed over.
static constexpr vantrel::ShortText japaneseFonts[] = {"NotoSansCJKjp-Regular", "IPAexGothic", "IPAPGothic",
                                                       "TakaoPGothic", "VL-PGothic-Regular"};
#endif

@implementation VantrelPaneView

#ifdef GNUSTEP
+ (void)initialize {
    if (self != [VantrelPaneView class]) return;
    vantrel::registerStandardImages();
    NSMutableArray *names = [NSMutableArray arrayWithArray:[NSFont preferredFontNames]];
    for (const auto &name : japaneseFonts) [names addObject:vantrel::cocoa::toNSString(name)];
    [NSFont setPreferredFontNames:names];
}
#endif

- (void)viewDidMoveToWindow {
    [super viewDidMoveToWindow];
    if (firstControl) [[self window] makeFirstResponder:firstControl];
}

@end

#ifdef GNUSTEP
@implementation VantrelPaneWindow

- (id)initWithContentRect:(NSRect)frame
                styleMask:(NSUInteger)style
                  backing:(NSBackingStoreType)backing
                    defer:(BOOL)__attribute__((unused))defer {
    return [super initWithContentRect:frame styleMask:style backing:backing defer:YES];
}

@end
#endif
