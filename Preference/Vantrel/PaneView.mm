#import "Preference/Vantrel/PaneView.h"

@implementation VantrelPaneView

#ifdef GNUSTEP
+ (void)initialize {
    if (self != [VantrelPaneView class]) return;
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
