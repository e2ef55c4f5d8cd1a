#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSDisplayServer.h>
#import <GNUstepGUI/GSGormLoading.h>
#import <GNUstepGUI/GSNibLoading.h>
#import <GNUstepGUI/GSXibLoading.h>

#include <cstdio>
#include <cstdlib>

// A display is told much that doesn't matter where there is none.
#pragma GCC diagnostic ignored "-Wunused-parameter"

// Makes of an interface file the archive that GNUstep loads in a tenth of the time and memory:
//
//     archive_interface VantrelPref.gorm VantrelPref.xib
//
// The archive has the objects of the file and, by name, their connections. It is the same on every machine with this
// GNUstep: fonts and colours are kept by their role, images by their name. Status 1 and a line say what went wrong.

// In GNUstep's library, but in no header.
extern "C" BOOL initialize_gnustep_backend(void);

/// Stands in for the display, which a machine that builds need not have. Interface files make windows, but none of
/// these is ever shown, so that nothing needs doing.
@interface NoDisplay : GSDisplayServer {
    int windows;
}
@end

@implementation NoDisplay

/// What every operation does that a display has to bring.
- (id)subclassResponsibility:(SEL)operation {
    return nil;
}

- (NSArray *)screenList {
    return [NSArray arrayWithObject:[NSNumber numberWithInt:0]];
}

- (NSRect)boundsForScreen:(int)screen {
    return NSMakeRect(0, 0, 1024, 768);
}

// clang reads these selectors, whose parts have no names, only with the blanks that clang-format would take away.
// clang-format off
- (int)window:(NSRect)frame :(NSBackingStoreType)backing :(unsigned int)style :(int)screen {
    return ++windows;
}

- (void)styleoffsets:(float *)left :(float *)right :(float *)top :(float *)bottom :(unsigned int)style {
    *left = *right = *top = *bottom = 0;
}
// clang-format on

@end

namespace {

[[noreturn]] void fail(NSString *what) {
    std::fprintf(stderr, "archive_interface: %s\n", [what UTF8String]);
    std::exit(EXIT_FAILURE);
}

/// An application without a display, so without an icon on it.
void startApplication() {
    [[NSUserDefaults standardUserDefaults] registerDefaults:[NSDictionary dictionaryWithObject:@"YES"
                                                                                        forKey:@"GSSuppressAppIcon"]];
    initialize_gnustep_backend();
    [GSDisplayServer setDefaultServerClass:[NoDisplay class]];
    [NSApplication sharedApplication];
}

class Archive {
   public:
    explicit Archive(NSString *interfaceFile) {
        NSData *xml = [NSData dataWithContentsOfFile:interfaceFile];
        NSKeyedUnarchiver *reader = xml ? [GSXibKeyedUnarchiver unarchiverForReadingWithData:xml] : nil;
        NSArray *roots = [reader decodeObjectForKey:@"IBDocument.RootObjects"];
        IBObjectContainer *contents = [reader decodeObjectForKey:@"IBDocument.Objects"];
        if ([roots count] == 0 || !contents) fail([interfaceFile stringByAppendingString:@" is no interface file"]);

        // The first of the roots stands for whoever loads the file.
        [[roots objectAtIndex:0] setRealObject:owner_];
        addConnections(contents);
        adaptObjects(contents);
    }

    NSData *data() const { return [NSArchiver archivedDataWithRootObject:container_]; }

   private:
    void addConnections(IBObjectContainer *contents) {
        NSEnumerator *records = [contents connectionRecordEnumerator];
        while (IBConnectionRecord *record = [records nextObject]) {
            IBConnection *connection = [[record connection] nibInstantiate];
            id source = [connection source];
            id destination = [connection destination];
            if ([connection isKindOfClass:[IBActionConnection class]]) {
                // Of an action it calls the target the source.
                connect([NSNibControlConnector class], destination, source, [connection label]);
            } else if ([connection isKindOfClass:[IBOutletConnection class]]) {
                connect([NSNibOutletConnector class], source, destination, [connection label]);
            } else {
                fail([@"nothing is known of " stringByAppendingString:[connection description]]);
            }
        }
    }

    void adaptObjects(IBObjectContainer *contents) {
        NSEnumerator *records = [contents objectRecordEnumerator];
        while (IBObjectRecord *record = [records nextObject]) {
            id object = [record object];
            // An archive of views leaves their tool tips out.
            if ([object isKindOfClass:[NSView class]] && [object toolTip]) {
                connect([NSNibOutletConnector class], object, [object toolTip], @"toolTip");
            }
            // A closed pop-up would show the tick of its chosen item, and room for it before every title. GNUstep takes
            // the images away from items that it adds itself.
            if ([object isKindOfClass:[NSPopUpButtonCell class]]) [object setAltersStateOfSelectedItem:NO];
            if ([object isKindOfClass:[NSMenuItem class]]) {
                [object setOnStateImage:nil];
                [object setMixedStateImage:nil];
            }
        }
    }

    void connect(Class kind, id source, id destination, NSString *label) {
        NSNibConnector *connector = [[kind new] autorelease];
        [connector setSource:nameOf(source)];
        [connector setDestination:nameOf(destination)];
        [connector setLabel:label];
        [[container_ connections] addObject:connector];
    }

    /// The name by which connections know an object.
    NSString *nameOf(id object) {
        if (object == owner_) return NSNibOwner;
        if (!object) fail(@"a connection leads nowhere");
        NSMutableDictionary *objects = [container_ nameTable];
        NSArray *names = [objects allKeysForObject:object];
        if ([names count] > 0) return [names objectAtIndex:0];
        NSString *name = [NSString stringWithFormat:@"%lu", static_cast<unsigned long>([objects count])];
        [objects setObject:object forKey:name];
        // What nothing holds but its name: whoever loads the archive gets it to keep.
        if ([object isKindOfClass:[NSWindow class]]) [[container_ topLevelObjects] addObject:object];
        return name;
    }

    NSObject *owner_ = [[NSObject new] autorelease];
    GSNibContainer *container_ = [[GSNibContainer new] autorelease];
};

}  // namespace

int main(int argc, char **argv) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    if (argc != 3) fail(@"usage: archive_interface ARCHIVE INTERFACE-FILE");
    startApplication();
    const Archive archive([NSString stringWithUTF8String:argv[2]]);
    NSString *path = [NSString stringWithUTF8String:argv[1]];
    if (![archive.data() writeToFile:path atomically:YES]) fail([path stringByAppendingString:@" can't be written"]);
    [pool release];
    return EXIT_SUCCESS;
}
