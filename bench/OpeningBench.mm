#import <AppKit/AppKit.h>
#import <PreferencePanes/PreferencePanes.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

// What it costs a settings host to open a pane, as a ratio to the median of other panes:
//
//     opening_bench ROUNDS OURS.prefPane OTHER.prefPane...
//
// In every round each bundle is opened once, in an order drawn by lot, by a host of its own that measures itself: from
// the loading of the bundle until its view is drawn in the host's window. It needs a display.

namespace {

struct Cost {
    double time, processor, privateMemory;
};

struct Measure {
    const char *name;
    double Cost::*value;
};

constexpr std::array measures{Measure{"time", &Cost::time}, Measure{"processor", &Cost::processor},
                              Measure{"private memory", &Cost::privateMemory}};

[[noreturn]] void fail(const std::string &what) {
    std::fprintf(stderr, "opening_bench: %s\n", what.c_str());
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

// The comparison

/// Has a new process open a bundle.
Cost costOfOpening(const std::string &self, const std::string &bundle) {
    FILE *host = popen(("'" + self + "' --open '" + bundle + "' 2>/dev/null").c_str(), "r");
    if (!host) fail("no process");
    Cost cost{};
    bool told = false;
    std::array<char, 512> line{};
    // A pane may have something to say on the same channel.
    while (std::fgets(line.data(), line.size(), host)) {
        told |= std::sscanf(line.data(), "opened %lf %lf %lf", &cost.time, &cost.processor, &cost.privateMemory) == 3;
    }
    if (pclose(host) != 0 || !told) fail("the host could not open " + bundle);
    return cost;
}

/// The value below which that share of the values lies.
double quantile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    const double place = share * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, values.size() - 1);
    return values[below] + (values[above] - values[below]) * (place - static_cast<double>(below));
}

double median(const std::vector<double> &values) {
    return quantile(values, 0.5);
}

std::string nameOf(const std::string &bundle) {
    return
        [[[[NSString stringWithUTF8String:bundle.c_str()] lastPathComponent] stringByDeletingPathExtension] UTF8String];
}

void compare(const std::string &self, int rounds, std::vector<std::string> bundles) {
    const std::string ours = bundles.front();
    std::map<std::string, std::map<const char *, std::vector<double>>> ratios;
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < bundles.size(); ++i) order.push_back(i);
    std::mt19937 lot(std::random_device{}());

    // The first round brings the files into memory and isn't counted.
    for (int round = 0; round <= rounds; ++round) {
        std::vector<Cost> costs(bundles.size());
        std::shuffle(order.begin(), order.end(), lot);
        for (std::size_t i : order) costs[i] = costOfOpening(self, bundles[i]);
        if (round == 0) continue;
        for (const Measure &measure : measures) {
            std::vector<double> others;
            for (std::size_t i = 1; i < costs.size(); ++i) others.push_back(costs[i].*measure.value);
            for (std::size_t i = 0; i < costs.size(); ++i) {
                ratios[bundles[i]][measure.name].push_back(costs[i].*measure.value / median(others));
            }
        }
    }

    std::printf("Opening a pane, to the median of the other %zu panes (%d rounds: median, first to last decile)\n\n",
                bundles.size() - 1, rounds);
    std::printf("%-16s", "");
    for (const Measure &measure : measures) std::printf("  %-22s", measure.name);
    std::printf("\n");
    for (const std::string &bundle : bundles) {
        std::printf("%-16s", nameOf(bundle).c_str());
        for (const Measure &measure : measures) {
            const std::vector<double> &ratio = ratios[bundle][measure.name];
            std::printf("  %5.2f (%5.2f to %5.2f)", median(ratio), quantile(ratio, 0.1), quantile(ratio, 0.9));
        }
        std::printf("\n");
    }
}

}  // namespace

int main(int argc, char **argv) {
    if (argc == 3 && std::string(argv[1]) == "--open") openAndTell(argv[2]);
    if (argc < 4 || std::atoi(argv[1]) < 1) fail("usage: opening_bench ROUNDS OURS.prefPane OTHER.prefPane...");
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    compare(argv[0], std::atoi(argv[1]), {argv + 2, argv + argc});
    [pool release];
    return EXIT_SUCCESS;
}
