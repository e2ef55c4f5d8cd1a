#pragma once

#include <functional>

namespace vantrel {

/// Does `work`. An exception that ends it, also one of Foundation's, goes no further. In a file of C++, because in
/// Objective-C++ neither g++ nor clang can catch those here.
void withoutExceptions(const std::function<void()>& work);

}  // namespace vantrel
