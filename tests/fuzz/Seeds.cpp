#include <fstream>

#include "tests/platform/gnustep/HostileLists.h"

/// Writes small lists of every hostile kind into the folder that it is called with.
int main(int, char** arguments) {
    const std::string folder = arguments[1];
    vantrel::gnustep::HostileLists(1000).forEach([&](const std::string& name, const std::string& list) {
        std::ofstream(folder + '/' + name, std::ios::binary) << list;
    });
    return 0;
}
