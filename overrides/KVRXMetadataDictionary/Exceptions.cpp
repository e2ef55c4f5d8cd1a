#include "overrides/KVRXMetadataDictionary/Exceptions.h"

namespace vantrel {

void withoutExceptions(const std::function<void()>& work) {
    try {
        work();
    } catch (...) {  // The work shows what it came to.
    }
}

}  // namespace vantrel
