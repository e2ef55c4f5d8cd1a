#pragma once

#include <string>
#include <vector>

namespace vantrel::memory {

/// What the in-memory platform was asked to do, a line a call, in order: "write FormatRGB8 = true",
/// "fmtQTGamma selectCellAtRow 1 column 0". All parts of one platform share a journal.
class Journal {
public:
    void record(std::string line) { lines_.push_back(std::move(line)); }

    const std::vector<std::string>& lines() const { return lines_; }

    /// The lines that start with `prefix`, in order.
    std::vector<std::string> linesStarting(const std::string& prefix) const {
        std::vector<std::string> found;
        for (const auto& line : lines_) {
            if (line.starts_with(prefix)) found.push_back(line);
        }
        return found;
    }

    /// The lines that change the preferences: writes and synchronises, in order.
    std::vector<std::string> preferenceChanges() const {
        std::vector<std::string> found;
        for (const auto& line : lines_) {
            if (line.starts_with("write ") || line == "synchronize") found.push_back(line);
        }
        return found;
    }

    /// Forgets what came before, so that a test looks at one action alone.
    void clear() { lines_.clear(); }

private:
    std::vector<std::string> lines_;
};

}  // namespace vantrel::memory
