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

bool isSpace(char character) {
    return character == ' ' || character == '\n' || character == '\t' || character == '\r';
}

/// More than XML allows, but nothing that ends a name.
bool isInName(char character) {
    return !isSpace(character) && std::string_view("<>/=?!&'\"[]").find(character) == std::string_view::npos;
}

/// What stands between the tags of `element`.
std::string_view contentOf(std::string_view element) {
    const auto start = element.find('>') + 1;
    return element.substr(start, std::max(element.rfind('<'), start) - start);
}

/// The characters that mean themselves in a text, whatever stands beside them.
constexpr auto ordinary = [] {
    std::array<bool, 256> ordinary{};
    std::fill(ordinary.begin() + ' ', ordinary.begin() + '~' + 1, true);
    for (const unsigned char other : {'<', '&', ']', '\\'}) ordinary[other] = false;
    return ordinary;
}();

/// How many characters at the start of `text` mean themselves.
std::size_t ordinaryAt(std::string_view text) {
    std::size_t size = 0;
    while (size < text.size() && ordinary[static_cast<unsigned char>(text[size])]) ++size;
    return size;
}

/// Walks along XML. What is taken is sound; what is not sound stays, and nothing that comes next is the like of it.
class Reader {
public:
    explicit Reader(std::string_view xml) : xml_(xml), rest_(xml) {}

    std::optional<XMLPropertyList> list() {
        // Room for entries of the usual length; doubled twice, for the shortest, and no more.
        found_.entries.reserve(xml_.size() / (4 * std::string_view("<key/><true/>").size()) + 1);
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
        if (!sizeOfNext("<dict") || !takeValue(0)) return false;
        const auto lastTag = static_cast<std::uint32_t>(xml_.rfind('<', position() - 1));
        found_.dictionaryEnd = lastTag == start ? position() - 2 : lastTag;
        return true;
    }

    /// `depth` is how many containers stand around it.
    bool takeValue(std::size_t depth) {
        if (!take("<")) return false;
        for (const char* name : {"string", "integer", "true", "false", "real", "data", "date"}) {
            if (take(name)) return takeElement(name, [this] { return takeText(); });
        }
        if (depth > deepestNesting) return false;
        if (take("array")) return takeElement("array", [=, this] { return takeItems(depth + 1); });
        return take("dict") && takeElement("dict", [=, this] { return takeEntries(depth + 1); });
    }

    bool takeItems(std::size_t depth) {
        for (skipAround(); !sizeOfNext("</"); skipAround()) {
            if (!takeValue(depth)) return false;
        }
        return true;
    }

    bool takeEntries(std::size_t depth) {
        for (skipAround(); !sizeOfNext("</"); skipAround()) {
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
    bool takeElement(const char* name, Content takeContent) {
        skipSpace();
        return take("/>") || (take(">") && takeContent() && takeEndTag(name));
    }

    bool takeEndTag(const char* name) {
        if (!take("</") || !take(name)) return false;
        skipSpace();
        return take(">");
    }

    /// Up to the next tag. What it means is appended to `meaning`.
    bool takeText(std::string* meaning = nullptr) {
        for (;;) {
            const auto ordinary = rest_.substr(0, ordinaryAt(rest_));
            note(ordinary, meaning);
            rest_.remove_prefix(ordinary.size());
            if (sizeOfNext("</")) return true;
            if (sizeOfNext("&")) {
                if (!takeReference(meaning)) return false;
            } else if (!sizeOfNext("<")) {
                if (sizeOfNext("]]>") || !takeCharacter(meaning)) return true;
            } else if (take("<![CDATA[")) {
                if (!takeThrough("]]>", meaning)) return false;
            } else if (!takeAside()) {
                return true;
            }
        }
    }

    /// A character that XML can hold. The three ends that a line may have all mean a line feed.
    bool takeCharacter(std::string* meaning = nullptr) {
        if (rest_.empty()) return false;
        const auto character = text::firstOf(rest_);
        if (character.isDamage() || !isXMLCharacter(character.number)) return false;
        const auto piece = rest_.substr(0, character.length);
        rest_.remove_prefix(character.length);
        if (piece != "\r") {
            note(piece, meaning);
        } else if (!sizeOfNext("\n")) {
            note("\n", meaning);
        }
        return true;
    }

    static void note(std::string_view piece, std::string* meaning) {
        if (meaning) *meaning += piece;
    }

    /// To one of the five characters that XML names, or by number.
    bool takeReference(std::string* meaning) {
        constexpr std::array<std::pair<const char*, const char*>, 5> named{
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
        const auto start = rest_;
        if (!takeName() || start.substr(0, start.size() - rest_.size()) == "xml") return false;
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
        const char* quote = sizeOfNext("'") ? "'" : "\"";
        if (!take(quote)) return false;
        while (!take(quote)) {
            if (sizeOfNext("<") || !takeCharacter()) return false;
        }
        return true;
    }

    bool takeName() {
        bool isTaken = false;
        while (!rest_.empty() && isInName(rest_.front()) && takeCharacter()) isTaken = true;
        return isTaken;
    }

    /// Whether there was any.
    bool skipSpace() {
        bool isTaken = false;
        for (; !rest_.empty() && isSpace(rest_.front()); rest_.remove_prefix(1)) isTaken = true;
        return isTaken;
    }

    bool take(const char* piece) {
        const auto size = sizeOfNext(piece);
        rest_.remove_prefix(size);
        return size > 0;
    }

    /// 0 when `piece` isn't next.
    std::size_t sizeOfNext(const char* piece) const {
        // What else is next mostly differs in the first two characters: a call to compare all at once takes longer.
        std::size_t size = 0;
        while (piece[size] != '\0' && size < rest_.size() && piece[size] == rest_[size]) ++size;
        return piece[size] == '\0' ? size : 0;
    }

    bool takeThrough(const char* end, std::string* meaning = nullptr) {
        while (!take(end)) {
            if (!takeCharacter(meaning)) return false;
        }
        return true;
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
    entry.isNamedApart = ordinaryAt(content) < content.size();
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
    return ordinaryAt(content) == content.size() ? std::string(content) : withEscapesRead(Reader(content).text());
}

}  // namespace vantrel::gnustep
