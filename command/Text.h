#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// `text` for one line of output: what would end or disturb the line is written as in C, "\n" or "\x1b"; an empty text
/// is two quotes.
std::string onOneLine(std::string_view text);

/// The columns that `text`, UTF-8, takes on a terminal.
std::size_t columns(std::string_view text);

/// `text` in so many columns: filled up with blanks, or without its start, which an ellipsis stands for.
std::string inColumns(std::string_view text, std::size_t wanted);

/// What begins a style on a terminal.
inline constexpr std::string_view bold = "\033[1m";
inline constexpr std::string_view yellow = "\033[33m";
inline constexpr std::string_view red = "\033[31m";

/// `text` in a style; without one as it is.
std::string styled(std::string_view style, std::string_view text);

/// Whether both are the same but for the case of English letters.
bool isSameName(std::string_view one, std::string_view other);

/// The name that `word` is most likely meant to be.
std::string nearest(std::string_view word, const std::vector<std::string>& names);

/// `text` as one word of a shell's command line.
std::string shellWord(std::string_view text);

}  // namespace vantrel
