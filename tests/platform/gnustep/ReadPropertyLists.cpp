#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "platform/gnustep/PropertyList.h"

/// Reads every property list in the folder that it is called with and writes what it is as XML beside it, under the
/// same name with ".xml" behind it; nothing for what it doesn't read.
int main(int, char** arguments) {
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const auto list = vantrel::gnustep::PropertyList::parse({std::istreambuf_iterator<char>(file), {}});
        if (list) std::ofstream(entry.path().string() + ".xml", std::ios::binary) << list->bytes();
    }
    return 0;
}
