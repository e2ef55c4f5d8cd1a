#import <AppKit/AppKit.h>
#import <PreferencePanes/PreferencePanes.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

// A settings host that opens a pane and measures itself, from the loading of the bundle until its view is drawn in the
// host's window:
//
//     pane_host --open PANE.prefPane
//
// (A bare file's name would be AppKit's to open.) It tells the seconds, those of the processor, and the kilobytes that
// it shares with no other process. It needs a display.

namespace {

[[noreturn]] void fail(const std::string &what) {
    std::fprintf(stderr, "pane_host: %s\n", what.c_str());
    std::exit(EXIT_FAILURE);
}

double seconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// The kilobytes that this process shares with no other.
double privateMemory() {
    std::ifstream rollup("/proc/self/smaps_rollup");
    double sum = 0;
    for (std::string line; std::getline(rollup, line);) {
        if (line.starts_with("Private_")) sum += std::atof(line.substr(line.find(':') + 1).c_str());
    }
    return sum;
}

// The host: before it opens a pane it has a menu, and a window with an icon, a button and a text, all drawn

void makeMenu() {
    NSMenu *menu = [[NSMenu alloc] initWithTitle:@"System Preferences"];
    NSMenu *edit = [[NSMenu alloc] initWithTitle:@"Edit"];
    [edit addItemWithTitle:@"Copy" action:@selector(copy:) keyEquivalent:@"c"];
    [menu setSubmenu:edit forItem:[menu addItemWithTitle:@"Edit" action:nullptr keyEquivalent:@""]];
    [NSApp setMainMenu:menu];
    [edit release];
    [menu release];
}

NSWindow *hostWindow() {
    NSWindow *window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 594, 414)
                                                   styleMask:NSTitledWindowMask | NSClosableWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    NSImageView *icon = [[NSImageView alloc] initWithFrame:NSMakeRect(10, 370, 32, 32)];
    [icon setImage:[NSImage imageNamed:@"GNUstep"]];
    NSButton *button = [[NSButton alloc] initWithFrame:NSMakeRect(60, 370, 100, 24)];
    [button setTitle:@"Show All"];
    NSTextField *text = [[NSTextField alloc] initWithFrame:NSMakeRect(170, 370, 100, 24)];
    [text setStringValue:@"System Preferences"];
    for (NSView *view : {static_cast<NSView *>(icon), static_cast<NSView *>(button), static_cast<NSView *>(text)}) {
        [[window contentView] addSubview:view];
        [view release];
    }
    [window makeKeyAndOrderFront:nil];
    [window display];
    return window;
}

void openPane(NSString *path, NSWindow *window) {
    NSBundle *bundle = [NSBundle bundleWithPath:path];
    NSPreferencePane *pane = [[[bundle principalClass] alloc] initWithBundle:bundle];
    NSView *view = [pane loadMainView];
    if (!view) fail(std::string("no pane in ") + [path UTF8String]);
    [pane willSelect];
    [[window contentView] addSubview:view];
    [pane didSelect];
    [window display];
}

}  // namespace

@interface Host : NSObject {
   @public
    const char *path;
    NSWindow *window;
}
@end

@implementation Host

- (void)openPaneAndTell {
    const double memoryBefore = privateMemory();
    const double processorBefore = seconds(CLOCK_PROCESS_CPUTIME_ID);
    const double timeBefore = seconds(CLOCK_MONOTONIC);
    openPane([NSString stringWithUTF8String:path], window);
    const double time = seconds(CLOCK_MONOTONIC) - timeBefore;
    const double processor = seconds(CLOCK_PROCESS_CPUTIME_ID) - processorBefore;
    const double memory = privateMemory() - memoryBefore;
    std::printf("opened %.9f %.9f %.0f\n", time, processor, memory);
    std::fflush(stdout);
    // What the pane would do at the end of its host is no part of its opening.
    _exit(EXIT_SUCCESS);
}

@end

namespace {

[[noreturn]] void openAndTell(const char *path) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    [NSApplication sharedApplication];
    // Each window tells the window manager the icon. GNUstep's own, without one, is of an unusual size.
    [NSApp setApplicationIconImage:[[NSImage alloc] initWithContentsOfFile:@HOST_ICON]];
    makeMenu();
    Host *host = [Host new];
    host->path = path;
    host->window = hostWindow();
    // By then everything is drawn and the display has nothing more to tell.
    [host performSelector:@selector(openPaneAndTell) withObject:nil afterDelay:0.3];
    [NSApp run];
    [pool release];
    fail("the host ended without the pane");
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3 || std::string(argv[1]) != "--open") fail("usage: pane_host --open PANE.prefPane");
    openAndTell(argv[2]);
}
