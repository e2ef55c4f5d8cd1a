#import "overrides/InstalledMetadataDictionary.h"

#include <dlfcn.h>
#include <objc/runtime.h>

namespace vantrel {

// The library is loaded, not linked: a pane without it still opens, and only the controls of the override metadata keep
// their state; and where the host has brought a class of the name, no second one comes along. The loader looks beside
// the pane's own binary first where that says so (a user's installation), then where the system keeps libraries.
Class installedMetadataDictionary() {
    Class found = objc_lookUpClass("MetadataDictionary");
    if (!found && dlopen("libKVRXMetadataDictionary.so.1", RTLD_NOW)) {
        found = objc_lookUpClass("MetadataDictionary");
    }
    return found;
}

}  // namespace vantrel
