#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::gnustep {

/// Passages of a text, and what comes in their place.
class Splices {
public:
    /// No two passages may overlap.
    void add(std::uint32_t start, std::uint32_t end, std::string_view text);

    /// To be called once all are added, and before anything else is asked: a list can have a million of them.
    void sort();

    /// By how many bytes `text` grows, in numbers that wrap around.
    std::size_t growth() const { return splices_.empty() ? 0 : splices_.back().growth; }

    /// What `text` becomes, in pieces of it and of what comes in.
    std::vector<std::string_view> pieces(std::string_view text) const;

    /// Puts all of it into `text`: where it stands if there is room and little to do, or else into a new one.
    void applyTo(std::string& text) const;

    /// How far what stood at `position` goes, in numbers that wrap around; what comes in place of a passage counts as
    /// standing at its start.
    std::uint32_t distanceAt(std::uint32_t position) const {
        // Almost everything stands before the first passage or behind the last.
        if (splices_.empty() || position <= splices_.front().start) return 0;
        return static_cast<std::uint32_t>(position > splices_.back().start ? growth() : growthBefore(position));
    }

private:
    struct Splice {
        std::uint32_t start;
        std::uint32_t end;
        /// What comes in, in `texts_`.
        std::uint32_t text;
        std::uint32_t textLength;
        /// By how much the text grows up to here, in numbers that wrap around.
        std::size_t growth;
    };

    std::string_view textOf(const Splice& splice) const {
        return std::string_view(texts_).substr(splice.text, splice.textLength);
    }

    std::size_t growthBefore(std::uint32_t position) const;

    std::vector<Splice> splices_;
    std::string texts_;
};

}  // namespace vantrel::gnustep
