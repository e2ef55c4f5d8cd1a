#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

namespace vantrel::posix {

/// A folder of a test's own, gone with everything in it at the end. Names are relative to it.
class TemporaryFolder {
public:
    TemporaryFolder() : path((std::filesystem::temp_directory_path() / "vantrel-test-XXXXXX").string()) {
        if (!mkdtemp(path.data())) throw std::runtime_error("no temporary folder at " + path);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    /// The last part of its path.
    std::string name() const { return std::filesystem::path(path).filename().string(); }

    std::string operator/(const std::string& name) const { return path + "/" + name; }

    void makeFolder(const std::string& name) const { std::filesystem::create_directories(*this / name); }

    void write(const std::string& name, const std::string& contents) const {
        std::ofstream file(*this / name, std::ios::binary);
        file << contents;
        if (!file.flush()) throw std::runtime_error("can't write " + name);
    }

    std::string read(const std::string& name) const {
        std::ifstream file(*this / name, std::ios::binary);
        if (!file) throw std::runtime_error("can't read " + name);
        std::ostringstream contents;
        contents << file.rdbuf();
        return contents.str();
    }

    /// The names of everything in the folder, hidden ones too.
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(path)) found.insert(entry.path().filename());
        return found;
    }

    std::string path;
};

}  // namespace vantrel::posix
