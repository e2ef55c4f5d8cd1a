#import "platform/cocoa/CocoaWatch.h"

#import <Foundation/Foundation.h>

#import "platform/cocoa/CocoaText.h"

namespace {

struct Calls {
    std::function<void()> changed;
    std::function<void()> posted;
};

}  // namespace

/// Turns what the run loop sends into calls. g++ takes no C++ objects for instance variables.
@interface VantrelWatcher : NSObject {
    const void *calls;
}
- (id)initWithCalls:(const void *)calls;
@end

@implementation VantrelWatcher

- (id)initWithCalls:(const void *)theCalls {
    if ((self = [super init])) calls = theCalls;
    return self;
}

- (void)descriptorIsReadable:(NSNotification *)notification {
    static_cast<const Calls *>(calls)->changed();
    [[notification object] waitForDataInBackgroundAndNotify];
}

- (void)secondHasPassed:(NSTimer *)timer {
    (void)timer;
    static_cast<const Calls *>(calls)->changed();
}

- (void)wasPosted:(NSNotification *)notification {
    (void)notification;
    static_cast<const Calls *>(calls)->posted();
}

@end

namespace vantrel::cocoa {

void CocoaWatch::run(const Reactions &reactions) {
    ChangeEvents events;
    const auto changed = [&] {
        events.acknowledge();
        reactions.changed();
    };
    const Calls calls{changed, reactions.posted};
    VantrelWatcher *watcher = [[VantrelWatcher alloc] initWithCalls:&calls];
    try {
        [[NSDistributedNotificationCenter defaultCenter]
                   addObserver:watcher
                      selector:@selector(wasPosted:)
                          name:toNSString(reactions.name)
                        object:toNSString(reactions.object)
            suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
    } catch (...) {
        // GNUstep raises where it can't have the daemon that carries notifications; g++ can't catch that by its class.
        log_.log(reactions.name + " can't be heard: there is no daemon for notifications");
    }
    events = begin_();
    changed();
    if (events.descriptor >= 0) {
        NSFileHandle *handle = [[NSFileHandle alloc] initWithFileDescriptor:events.descriptor closeOnDealloc:NO];
        [[NSNotificationCenter defaultCenter] addObserver:watcher
                                                 selector:@selector(descriptorIsReadable:)
                                                     name:NSFileHandleDataAvailableNotification
                                                   object:handle];
        [handle waitForDataInBackgroundAndNotify];
    } else {
        [NSTimer scheduledTimerWithTimeInterval:1
                                         target:watcher
                                       selector:@selector(secondHasPassed:)
                                       userInfo:nil
                                        repeats:YES];
    }
    while (true) {
        NSAutoreleasePool *pool = [NSAutoreleasePool new];
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantFuture]];
        [pool release];
    }
}

}  // namespace vantrel::cocoa
