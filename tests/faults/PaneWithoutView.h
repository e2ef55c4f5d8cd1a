#pragma once

#import <Foundation/Foundation.h>

namespace vantrel::faults {

/// The principal class of the built bundle, loaded by the first call.
Class principalClass();

/// The real pane with controls that need no window and no display: they keep what they are told.
class PaneWithoutView {
   public:
    PaneWithoutView();

    /// Sets the view up as the host does once it is loaded.
    void open() const;

    /// The user makes a control show `number`, a state or an index, and the control sends its action.
    void click(const char *outlet, const char *action, NSInteger number) const;

    /// What a control shows, a state or an index.
    NSInteger number(const char *outlet) const;

    /// The user types a folder and confirms it.
    void type(const char *outlet, const char *action, NSString *text) const;

   private:
    id object_;
};

}  // namespace vantrel::faults
