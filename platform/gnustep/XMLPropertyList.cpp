#include "platform/gnustep/XMLPropertyList.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/XMLEncoding.h"
#include "platform/gnustep/XMLText.h"
#include "platform/text/UTF16.h"

namespace vantrel::gnustep {
namespace {

constexpr std::array<std::string_view, 7> scalars{"string", "integer", "true", "false", "real", "data", "date"};

bool isSpace(char character) {
    return character == ' ' || character == '\n' || character == '\t' || character == '\r';
}

/// More than XML allows, but nothing that ends a name.
bool isInName(char character) {
    return !isSpace(character) && std::string_view("<>/=?!&'\"[]").find(character) == std::string_view::npos;
}

/// Whether `text` is UTF-8 and has only what XML can hold.
bool isXML(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        if ((text[at] >= ' ' && text[at] <= '~') || text[at] == '\n' || text[at] == '\t') {
            ++at;
            continue;
        }
        const auto character = text::firstOf(text.substr(at));
        if (character.isDamage() || !isXMLCharacter(character.number)) return false;
        at += character.length;
    }
    return true;
}

/// What stands between the tags of `element`.
std::string_view contentOf(std::string_view element) {
    const auto start = element.find('>') + 1;
    return element.substr(start, std::max(element.rfind('<'), start) - start);
}

/// Whether `content` means just its own characters.
bool isPlain(std::string_view content) {
    for (const char character : content) {
        if (character == '&' || character == '<' || character == '\r' || character == '\\') return false;
    }
    return true;
}

/// Walks along XML. What is taken is sound; what is not sound stays, and nothing that comes next is the like of it.
class Reader {
public:
    explicit Reader(std::string_view xml) : xml_(xml), rest_(xml) {}

    std::optional<XMLPropertyList> list() {
        if (!isXML(xml_)) return std::nullopt;
        std::size_t keys = 0;
        for (auto at = xml_.find("<key"); at != std::string_view::npos; at = xml_.find("<key", at + 1)) ++keys;
        found_.entries.reserve(keys);
        return takeList() ? std::optional(std::move(found_)) : std::nullopt;
    }

    /// Of a text that was found sound before: what it means.
    std::string text() {
        std::string meaning;
        meaning.reserve(xml_.size());
        takeText(&meaning);
        return meaning;
    }

private:
    bool takeList() {
        skipSpace();
        take(byteOrderMark);
        // The XML declaration, unless it is another instruction whose name starts like it.
        const auto start = rest_;
        if (take("<?xml") && !(takeAttributes() && take("?>"))) rest_ = start;
        skipAround();
        if (!takeDocumentType()) return false;
        skipAround();
        const bool hasFrame = take("<plist");
        if (hasFrame && (!takeAttributes() || !take(">"))) return false;
        skipAround();
        if (!takeTop()) return false;
        skipAround();
        if (hasFrame && !takeEndTag("plist")) return false;
        skipAround();
        return rest_.empty();
    }

    /// One with declarations of its own is not taken.
    bool takeDocumentType() {
        if (!take("<!DOCTYPE")) return true;
        if (!skipSpace() || !takeName()) return false;
        skipSpace();
        const int literals = take("PUBLIC") ? 2 : take("SYSTEM") ? 1 : 0;
        for (int taken = 0; taken < literals; ++taken) {
            if (!skipSpace() || !takeLiteral()) return false;
        }
        skipSpace();
        return take(">");
    }

    bool takeTop() {
        const auto start = position();
        if (!rest_.starts_with("<dict") || !takeValue(0)) return false;
        found_.dictionaryEnd = static_cast<std::uint32_t>(xml_.rfind('<', position() - 1));
        found_.isOneTag = found_.dictionaryEnd == start;
        return true;
    }

    /// `depth` is how many containers stand around it.
    bool takeValue(std::size_t depth) {
        if (!take("<")) return false;
        const auto name = takeWhile([](char character) { return character >= 'a' && character <= 'z'; });
        if (std::find(scalars.begin(), scalars.end(), name) != scalars.end()) {
            return takeElement(name, [this] { return takeText(); });
        }
        if (depth > deepestNesting) return false;
        if (name == "array") return takeElement(name, [=, this] { return takeItems(depth + 1); });
        return name == "dict" && takeElement(name, [=, this] { return takeEntries(depth + 1); });
    }

    bool takeItems(std::size_t depth) {
        for (skipAround(); !rest_.starts_with("</"); skipAround()) {
            if (!takeValue(depth)) return false;
        }
        return true;
    }

    bool takeEntries(std::size_t depth) {
        for (skipAround(); !rest_.starts_with("</"); skipAround()) {
            PropertyListEntry entry{};
            entry.start = position();
            if (!take("<key") || !takeElement("key", [this] { return takeText(); })) return false;
            const auto key = xml_.substr(entry.start, position() - entry.start);
            skipAround();
            entry.value = position();
            if (!takeValue(depth)) return false;
            entry.end = position();
            if (depth > 1) continue;
            setName(entry, key, found_.names);
            found_.entries.push_back(entry);
        }
        return true;
    }

    /// What follows the name of a start tag, up to the end of the element.
    template <typename Content>
    bool takeElement(std::string_view name, Content takeContent) {
        skipSpace();
        return take("/>") || (take(">") && takeContent() && takeEndTag(name));
    }

    bool takeEndTag(std::string_view name) {
        if (!take("</") || !take(name)) return false;
        skipSpace();
        return take(">");
    }

    /// Up to the next tag. What it means is appended to `meaning`.
    bool takeText(std::string* meaning = nullptr) {
        for (;;) {
            const auto plain = takeWhile([](char character) { return character != '<' && character != '&'; });
            if (plain.find("]]>") != std::string_view::npos) return false;
            note(plain, meaning);
            if (take("<![CDATA[")) {
                note(rest_.substr(0, rest_.find("]]>")), meaning);
                if (!takeThrough("]]>")) return false;
            } else if (rest_.starts_with('&')) {
                if (!takeReference(meaning)) return false;
            } else if (!takeAside()) {
                return true;
            }
        }
    }

    /// Appends what `piece` of a text means: its lines may end in three ways.
    static void note(std::string_view piece, std::string* meaning) {
        if (!meaning) return;
        for (std::size_t at = 0; at < piece.size(); ++at) {
            if (piece[at] != '\r') {
                *meaning += piece[at];
            } else if (!piece.substr(at + 1).starts_with('\n')) {
                *meaning += '\n';
            }
        }
    }

    /// To one of the five characters that XML names, or by number.
    bool takeReference(std::string* meaning) {
        constexpr std::array<std::pair<std::string_view, std::string_view>, 5> named{
            {{"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}, {"&quot;", "\""}, {"&apos;", "'"}}};
        for (const auto& [reference, character] : named) {
            if (!take(reference)) continue;
            note(character, meaning);
            return true;
        }
        if (!take("&#")) return false;
        const int base = take("x") ? 16 : 10;
        std::uint32_t number = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), number, base);
        if (error != std::errc() || !isXMLCharacter(number)) return false;
        if (meaning) text::append(*meaning, char32_t{number});
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        return take(";");
    }

    /// White space, comments and instructions.
    void skipAround() {
        do {
            skipSpace();
        } while (takeAside());
    }

    /// A comment or an instruction.
    bool takeAside() {
        const auto before = rest_;
        const bool isTaken = take("<!--") ? takeThrough("--") && take(">") : take("<?") && takeInstruction();
        if (!isTaken) rest_ = before;
        return isTaken;
    }

    bool takeInstruction() {
        const auto name = takeWhile(isInName);
        if (name.empty() || name == "xml") return false;
        return take("?>") || (skipSpace() && takeThrough("?>"));
    }

    bool takeAttributes() {
        while (skipSpace() && takeName()) {
            skipSpace();
            if (!take("=")) return false;
            skipSpace();
            if (!takeLiteral()) return false;
        }
        return true;
    }

    /// A text between two quotes of either kind.
    bool takeLiteral() {
        const auto quote = rest_.substr(0, 1);
        if (!take("\"") && !take("'")) return false;
        takeWhile([quote](char character) { return character != quote.front() && character != '<'; });
        return take(quote);
    }

    bool takeName() { return !takeWhile(isInName).empty(); }

    /// Whether there was any.
    bool skipSpace() { return !takeWhile(isSpace).empty(); }

    template <typename Predicate>
    std::string_view takeWhile(Predicate isWanted) {
        std::size_t size = 0;
        while (size < rest_.size() && isWanted(rest_[size])) ++size;
        const auto taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }

    bool take(std::string_view piece) {
        if (!rest_.starts_with(piece)) return false;
        rest_.remove_prefix(piece.size());
        return true;
    }

    bool takeThrough(std::string_view end) {
        const auto at = rest_.find(end);
        rest_.remove_prefix(std::min(at, rest_.size()));
        return take(end);
    }

    std::uint32_t position() const { return static_cast<std::uint32_t>(xml_.size() - rest_.size()); }

    std::string_view xml_;
    /// What is still to be taken.
    std::string_view rest_;
    XMLPropertyList found_;
};

}  // namespace

void setName(PropertyListEntry& entry, std::string_view element, std::string& names) {
    const auto content = contentOf(element);
    entry.isNamedApart = !isPlain(content);
    entry.name =
        static_cast<std::uint32_t>(entry.isNamedApart ? names.size() : entry.start + (content.data() - element.data()));
    if (entry.isNamedApart) names += textOf(element);
    entry.nameLength = (entry.isNamedApart ? names.size() - entry.name : content.size()) & 0x7FFFFFFF;
}

std::optional<XMLPropertyList> readXMLPropertyList(std::string_view xml) {
    return xml.size() <= largestPropertyList ? Reader(xml).list() : std::nullopt;
}

std::string textOf(std::string_view element) {
    const auto content = contentOf(element);
    return isPlain(content) ? std::string(content) : withEscapesRead(Reader(content).text());
}

}  // namespace vantrel::gnustep
