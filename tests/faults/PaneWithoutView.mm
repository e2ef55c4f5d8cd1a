#import "tests/faults/PaneWithoutView.h"

#import <PreferencePanes/PreferencePanes.h>
#import <objc/runtime.h>

#include <cstdlib>

// A control is told more than what matters here.
#pragma GCC diagnostic ignored "-Wunused-parameter"

/// Any control of the pane, as far as the pane asks it.
@interface ControlWithoutView : NSObject {
   @public
    NSInteger number;
    NSString *text;
}
@end

@implementation ControlWithoutView
- (NSInteger)state {
    return number;
}
- (void)setState:(NSInteger)state {
    number = state;
}
- (void)setEnabled:(BOOL)isEnabled {
}
- (NSInteger)numberOfRows {
    return 2;
}
- (NSInteger)selectedRow {
    return number;
}
- (void)selectCellAtRow:(NSInteger)row column:(NSInteger)column {
    number = row;
}
- (void)setState:(NSInteger)state atRow:(NSInteger)row column:(NSInteger)column {
    number = row;
}
- (void)removeAllItems {
}
- (id)menu {
    return nil;
}
- (NSInteger)indexOfSelectedItem {
    return number;
}
- (void)selectItemAtIndex:(NSInteger)index {
    number = index;
}
- (NSString *)stringValue {
    return text;
}
- (void)setStringValue:(NSString *)value {
    text = [value retain];
}
- (id)currentEditor {
    return nil;
}
@end

namespace vantrel::faults {
namespace {

NSBundle *bundle() {
    return [NSBundle bundleWithPath:@BUNDLE_PATH];
}

/// The control in the instance variable of that name.
ControlWithoutView *control(id pane, const char *outlet) {
    return object_getIvar(pane, class_getInstanceVariable(principalClass(), outlet));
}

bool isText(NSString *variable) {
    return [variable isEqual:@"appID"] || [variable hasSuffix:@"String"];
}

}  // namespace

Class principalClass() {
    return [bundle() principalClass];
}

PaneWithoutView::PaneWithoutView() : object_([[principalClass() alloc] initWithBundle:bundle()]) {
    unsigned int count = 0;
    Ivar *variables = class_copyIvarList(principalClass(), &count);
    for (unsigned int index = 0; index < count; ++index) {
        const bool isObject = *ivar_getTypeEncoding(variables[index]) == '@';
        if (!isObject || isText([NSString stringWithUTF8String:ivar_getName(variables[index])])) continue;
        object_setIvar(object_, variables[index], [ControlWithoutView new]);
    }
    std::free(variables);
}

void PaneWithoutView::open() const {
    [object_ mainViewDidLoad];
}

void PaneWithoutView::click(const char *outlet, const char *action, NSInteger number) const {
    ControlWithoutView *sender = control(object_, outlet);
    sender->number = number;
    [object_ performSelector:sel_registerName(action) withObject:sender];
}

NSInteger PaneWithoutView::number(const char *outlet) const {
    return control(object_, outlet)->number;
}

void PaneWithoutView::type(const char *outlet, const char *action, NSString *text) const {
    control(object_, outlet)->text = text;
    [object_ performSelector:sel_registerName(action) withObject:nil];
}

}  // namespace vantrel::faults
