#pragma once

#include <string>

namespace vantrel::cocoa {

/// The user's application support folder, which need not exist.
std::string applicationSupportFolder();

#ifndef __APPLE__
/// The folder in which the user's preferences domains are kept, a property list each.
std::string defaultsFolder();
#endif

}  // namespace vantrel::cocoa
