#include <fcntl.h>
#include <unistd.h>

#include <array>

#include "bench/peers/Peer.h"

// The least that makes a file's new content lasting, whatever the content: a temporary file, flushed, in the place of
// the old one, and the folder flushed. And the least that reads it.

namespace vantrel::bench {
namespace {

class Floor : public Peer {
public:
    explicit Floor(const std::string& folder) : folder_(folder), file_(folder + "/floor") { Floor::refresh(); }

    void fill(const std::vector<Setting>& all) override {
        bytes_ = propertyListOf(all);
        flags_ = bytes_.append(settings.size(), '1').size() - settings.size();
        replace();
    }

    void refresh() override {
        bytes_.clear();
        const int file = ::open(file_.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0) return;
        std::array<char, 16384> buffer;
        for (ssize_t got = 0; (got = read(file, buffer.data(), buffer.size())) > 0;) {
            bytes_.append(buffer.data(), static_cast<std::size_t>(got));
        }
        close(file);
        flags_ = bytes_.size() - settings.size();
    }

    Value value(std::size_t index) override {
        const Value& value = settings[index].value;
        return std::holds_alternative<bool>(value) ? bytes_[flags_ + index] == '1' : value;
    }

    void change(std::size_t index, bool flag) override {
        bytes_[flags_ + index] = flag ? '1' : '0';
        replace();
    }

private:
    void replace() {
        const std::string temporary = file_ + std::to_string(getpid());
        const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        require(file >= 0, "open");
        require(write(file, bytes_.data(), bytes_.size()) == static_cast<ssize_t>(bytes_.size()), "write");
        require(fsync(file) == 0, "fsync");
        close(file);
        require(rename(temporary.c_str(), file_.c_str()) == 0, "rename");
        const int folder = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        require(folder >= 0 && fsync(folder) == 0, "fsync of the folder");
        close(folder);
    }

    std::string folder_;
    std::string file_;
    std::string bytes_;
    /// Where a digit for each flag begins, behind the content.
    std::size_t flags_ = 0;
};

}  // namespace

Peer* open(const std::string& folder) {
    return new Floor(folder);
}

}  // namespace vantrel::bench
