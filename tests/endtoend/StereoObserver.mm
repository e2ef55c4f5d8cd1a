// Observes the notification of the stereo status menu, as the process does that shows the menu: prints a line for each,
// with the value that the codec's domain holds at the moment of receipt. Runs until it is ended.
#import <Foundation/Foundation.h>

#include <cstdio>

@interface StereoObserver : NSObject
- (void)viewChanged:(NSNotification *)notification;
@end

@implementation StereoObserver

- (void)viewChanged:(NSNotification *)notification {
    // NSUserDefaults would answer from what it read before; the file tells what is stored now.
    NSString *path = [GSDefaultsRootForUser(NSUserName()) stringByAppendingPathComponent:@"com.vantrel.codec.plist"];
    NSDictionary *domain = [NSDictionary dictionaryWithContentsOfFile:path];
    std::printf("%s from %s: ShowStereoStatusMenu is %s\n", [[notification name] UTF8String],
                [[[notification object] description] UTF8String],
                [[[domain objectForKey:@"ShowStereoStatusMenu"] description] UTF8String]);
    if ([[notification userInfo] count] != 0) std::printf("with user information\n");
    std::fflush(stdout);
}

@end

int main() {
    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    StereoObserver *observer = [[StereoObserver alloc] init];
    [[NSDistributedNotificationCenter defaultCenter] addObserver:observer
                                                        selector:@selector(viewChanged:)
                                                            name:@"StereoStatusMenuViewChanged"
                                                          object:nil];
    std::puts("Observing");
    std::fflush(stdout);
    [[NSRunLoop currentRunLoop] run];
    [pool release];
    return 0;
}
