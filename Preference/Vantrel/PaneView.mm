#import "Preference/Vantrel/PaneView.h"

@implementation VantrelPaneView

- (void)viewDidMoveToWindow {
    [super viewDidMoveToWindow];
    if (firstControl) [[self window] makeFirstResponder:firstControl];
}

@end
