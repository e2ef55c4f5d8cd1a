#pragma once

#import <AppKit/AppKit.h>
#import <PreferencePanes/PreferencePanes.h>

#include <map>
#include <string>

/// The operations on the settings as another part of the codec would send them.
@protocol StoreOperations
- (BOOL)initPrefCheck:(NSButton *)control forKey:(NSString *)key;
- (BOOL)initIntPrefCheck:(NSMatrix *)control forKey:(NSString *)key;
- (void)updateBoolPref:(BOOL)value forKey:(NSString *)key;
- (void)updateIntPref:(int)value forKey:(NSString *)key;
- (void)updateBoolPref:(BOOL)value forKey:(NSString *)key forBit:(int)bit;
- (void)setProcPathBit:(int)bit;
- (void)clearProcPathBit:(int)bit;
@end

namespace vantrel::host {

/// Runs the program's tests as a host with a display.
int runTests(int argc, char **argv);

/// The bundle that is tested, which VANTREL_BUNDLE names.
std::string bundlePath();
NSBundle *bundle();

/// The folder of GNUSTEP_CONFIG_FILE, in which this program's preferences and override record live; emptied before each
/// test.
std::string home();

/// A path there: `path` with a slash in front.
NSString *inHome(const char *path);

/// Starts over: no preferences, no override record.
void emptyHome();

/// What is in the codec's domain file: each key with its value as `class value`, e.g. "bool 1", "number 46",
/// "string /Volumes". Empty when there is no file.
std::map<std::string, std::string> domainFile();

/// Writes an XML property list.
void writeList(NSDictionary *list, NSString *path);

/// Writes the codec's domain file as another program would.
void writeDomainFile(NSDictionary *domain);

/// What is in the override record, likewise.
std::map<std::string, std::string> overrideRecord();

/// Writes the override record as another program would.
void writeOverrideRecord(NSDictionary *record);

/// Makes a copy of the file at `path` stand where the maker's library is installed.
void installMakersLibrary(const std::string &path);

/// The principal class of the bundle.
Class principalClass();

/// A pane as the settings host makes it: the principal class of the bundle, its view loaded and in a window. Like the
/// host's, it is never torn down; it only goes off the screen.
class Pane {
   public:
    /// Of the bundle; `resources` is one whose texts and information are used instead.
    explicit Pane(NSBundle *resources = nil);
    ~Pane();
    Pane(const Pane &) = delete;
    Pane &operator=(const Pane &) = delete;

    NSPreferencePane *object() const { return object_; }

    /// The object in the instance variable of that name; nil when the class has no such variable.
    id variable(const char *name) const;

    /// Sets a check box to a state, mixed included, and sends its action.
    void set(const char *outlet, NSInteger state) const;

    /// Tells a control that the user clicked it.
    void click(const char *outlet) const { [variable(outlet) performClick:nil]; }

    /// Selects a row or an item as the user does, and sends the action.
    void choose(const char *outlet, NSInteger index) const;

    /// Types text into a field, a key after the other, over what is in it.
    void type(const char *outlet, NSString *text) const;

   private:
    NSWindow *window_;
    NSPreferencePane *object_;
};

}  // namespace vantrel::host
