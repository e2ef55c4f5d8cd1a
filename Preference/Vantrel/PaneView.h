#pragma once

#import <AppKit/AppKit.h>

/// The pane's main view. It gives the pane's first control the keyboard when a host shows the pane.
///
/// A host is meant to do that itself, with the pane's `initialKeyView`, but some leave the keyboard on their own
/// buttons, from where the Tab key never reaches the pane.
@interface VantrelPaneView : NSView {
    IBOutlet NSView *firstControl;
}
@end
