#pragma once

#import <AppKit/AppKit.h>

/// The pane's main view: it does for the interface file what not every host or system does.
///
/// It gives the pane's first control the keyboard when a host shows the pane. A host is meant to do that itself, with
/// the pane's `initialKeyView`, but some leave the keyboard on their own buttons, from where Tab never gets here.
///
/// On GNUstep it names the fonts that stand in for characters that the system font lacks. Without names, GNUstep shows
/// Japanese as question marks even where a Japanese font is installed. It also registers the images of the controls in
/// it, before they are loaded.
@interface VantrelPaneView : NSView {
    IBOutlet NSView *firstControl;
}
@end

#ifdef GNUSTEP
/// The window that brings the view. The host takes the view out of it and never shows it, so that it waits with asking
/// the display for a window, which GNUstep's archives don't tell it to.
@interface VantrelPaneWindow : NSWindow
@end
#endif
