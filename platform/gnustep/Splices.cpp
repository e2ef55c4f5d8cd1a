#include "platform/gnustep/Splices.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vantrel::gnustep {
namespace {

/// Each that is put in where it stands moves all that is behind it.
constexpr std::size_t mostInPlace = 4;

/// What a text may grow by, a few bytes at a time, before it needs another place.
constexpr std::size_t roomToGrow = 1024;

}  // namespace

void Splices::add(std::uint32_t start, std::uint32_t end, std::string_view text) {
    splices_.push_back(
        {start, end, static_cast<std::uint32_t>(texts_.size()), static_cast<std::uint32_t>(text.size()), 0});
    texts_ += text;
}

void Splices::sort() {
    std::sort(splices_.begin(), splices_.end(),
              [](const Splice& one, const Splice& other) { return one.start < other.start; });
    std::size_t growth = 0;
    for (Splice& splice : splices_) {
        splice.growth = growth += std::size_t{splice.textLength} - (splice.end - splice.start);
    }
}

std::vector<std::string_view> Splices::pieces(std::string_view text) const {
    std::vector<std::string_view> pieces;
    std::size_t at = 0;
    for (const Splice& splice : splices_) {
        pieces.push_back(text.substr(at, splice.start - at));
        pieces.push_back(textOf(splice));
        at = splice.end;
    }
    pieces.push_back(text.substr(at));
    return pieces;
}

void Splices::applyTo(std::string& text) const {
    const std::size_t size = text.size() + growth();
    if (splices_.size() <= mostInPlace && size <= text.capacity()) {
        // From the end, so that what is still to be replaced stays where it is.
        for (auto splice = splices_.rbegin(); splice != splices_.rend(); ++splice) {
            text.replace(splice->start, splice->end - splice->start, textOf(*splice));
        }
        return;
    }
    std::string spliced;
    spliced.reserve(size + roomToGrow);
    for (const auto piece : pieces(text)) spliced += piece;
    text = std::move(spliced);
}

/// Behind the first passage.
std::size_t Splices::growthBefore(std::uint32_t position) const {
    const auto next = std::partition_point(splices_.begin(), splices_.end(),
                                           [position](const Splice& splice) { return splice.start < position; });
    return std::prev(next)->growth;
}

}  // namespace vantrel::gnustep
