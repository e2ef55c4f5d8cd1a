#import "tests/bundle/Host.h"

#include <gtest/gtest.h>
#import <objc/runtime.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace vantrel::host {

namespace {

std::string variableOfTheEnvironment(const char *name) {
    const char *value = std::getenv(name);
    if (!value) throw std::runtime_error(std::string("no ") + name);
    return value;
}

NSString *domainPath() {
    return inHome("/Defaults/com.vantrel.codec.plist");
}

NSString *overrideRecordPath() {
    return inHome("/Library/ApplicationSupport/Vantrel/OverrideMetadata.plist");
}

std::map<std::string, std::string> described(NSDictionary *dictionary) {
    std::map<std::string, std::string> entries;
    NSEnumerator *keys = [dictionary keyEnumerator];
    while (NSString *key = [keys nextObject]) {
        id value = [dictionary objectForKey:key];
        std::string kind = "other";
        if ([value isKindOfClass:[NSString class]]) kind = "string";
        if ([value isKindOfClass:[NSNumber class]]) kind = *[value objCType] == *@encode(BOOL) ? "bool" : "number";
        const std::string name = [key UTF8String];
        entries[name] = kind + " " + [[value description] UTF8String];
    }
    return entries;
}

}  // namespace

int runTests(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    [NSApplication sharedApplication];
    const int result = RUN_ALL_TESTS();
    [pool release];
    return result;
}

std::string bundlePath() {
    return variableOfTheEnvironment("VANTREL_BUNDLE");
}

NSBundle *bundle() {
    return [NSBundle bundleWithPath:[NSString stringWithUTF8String:bundlePath().c_str()]];
}

std::string home() {
    return std::filesystem::path(variableOfTheEnvironment("GNUSTEP_CONFIG_FILE")).parent_path();
}

NSString *inHome(const char *path) {
    return [NSString stringWithUTF8String:(home() + path).c_str()];
}

void emptyHome() {
    // The pane's store lives as long as the process: what earlier panes wrote and didn't synchronise goes first.
    id pane = [[principalClass() alloc] initWithBundle:bundle()];
    [(id<StoreOperations>)pane updateBoolPref:YES forKey:@"flushed"];
    std::filesystem::remove_all(home() + "/Defaults");
    std::filesystem::remove_all(home() + "/Library");
    std::filesystem::create_directories(home() + "/Defaults");
    std::filesystem::create_directories(home() + "/Library");
}

std::map<std::string, std::string> domainFile() {
    return described([NSDictionary dictionaryWithContentsOfFile:domainPath()]);
}

void writeList(NSDictionary *list, NSString *path) {
    NSData *xml = [NSPropertyListSerialization dataFromPropertyList:list
                                                             format:NSPropertyListXMLFormat_v1_0
                                                   errorDescription:nullptr];
    ASSERT_TRUE([xml writeToFile:path atomically:YES]);
}

void writeDomainFile(NSDictionary *domain) {
    writeList(domain, domainPath());
}

std::map<std::string, std::string> overrideRecord() {
    return described([NSDictionary dictionaryWithContentsOfFile:overrideRecordPath()]);
}

void writeOverrideRecord(NSDictionary *record) {
    std::filesystem::create_directories([[overrideRecordPath() stringByDeletingLastPathComponent] UTF8String]);
    writeList(record, overrideRecordPath());
}

void installMakersLibrary(const std::string &path) {
    const std::string libraries = "/Library/Application Support/Vantrel/Libs";
    std::filesystem::create_directories(libraries);
    std::filesystem::copy_file(path, libraries + "/KVRXMetadataDictionary.dylib");
}

Class principalClass() {
    return [bundle() principalClass];
}

Pane::Pane(NSBundle *resources) {
    object_ = [[principalClass() alloc] initWithBundle:resources ? resources : bundle()];
    NSView *view = [object_ loadMainView];
    window_ = [[NSWindow alloc] initWithContentRect:[view bounds]
                                          styleMask:NSTitledWindowMask
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    [window_ setReleasedWhenClosed:NO];
    [[window_ contentView] addSubview:view];
    [window_ makeKeyAndOrderFront:nil];
}

Pane::~Pane() {
    [window_ orderOut:nil];
}

id Pane::variable(const char *name) const {
    Ivar variable = class_getInstanceVariable([object_ class], name);
    return variable ? object_getIvar(object_, variable) : nil;
}

void Pane::set(const char *outlet, NSInteger state) const {
    NSButton *box = variable(outlet);
    [box setAllowsMixedState:YES];
    [box setState:state];
    [box sendAction:[box action] to:[box target]];
}

void Pane::choose(const char *outlet, NSInteger index) const {
    id control = variable(outlet);
    if ([control isKindOfClass:[NSMatrix class]]) {
        [control selectCellAtRow:index column:0];
    } else {
        [control selectItemAtIndex:index];
    }
    [control sendAction:[control action] to:[control target]];
}

void Pane::type(const char *outlet, NSString *text) const {
    NSTextField *field = variable(outlet);
    [window_ makeFirstResponder:field];
    [field selectText:nil];
    [[field currentEditor] insertText:text];
}

}  // namespace vantrel::host
