#import "Preference/Vantrel/PaneView.h"

#ifdef GNUSTEP
#import "Preference/Vantrel/StandardImages.h"
#endif

@implementation VantrelPaneView

#ifdef GNUSTEP
+ (void)initialize {
    if (self != [VantrelPaneView class]) return;
    vantrel::registerStandardImages();
    // Those of Debian's packages with Japanese fonts. One that isn't installed is passed over.
    NSArray *japanese = [NSArray arrayWithObjects:@"NotoSansCJKjp-Regular", @"IPAexGothic", @"IPAPGothic",
                                                  @"TakaoPGothic", @"VL-PGothic-Regular", nil];
    NSArray *preferred = [NSFont preferredFontNames];
    [NSFont setPreferredFontNames:preferred ? [preferred arrayByAddingObjectsFromArray:japanese] : japanese];
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
