#include "platform/posix/PropertyList.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/posix/BinaryPropertyList.h"
#include "platform/posix/PropertyListText.h"

namespace vantrel::posix {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text) {
    const auto start = text.find_first_not_of(whiteSpace);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(whiteSpace) - start + 1);
}

/// Any integer that a property list can hold: from -(2^64 - 1) to 2^64 - 1.
struct WholeNumber {
    bool negative = false;
    std::uint64_t magnitude = 0;
};

std::optional<WholeNumber> wholeNumber(std::string_view content) {
    auto digits = trimmed(content);
    WholeNumber number;
    number.negative = digits.starts_with('-');
    if (number.negative || digits.starts_with('+')) digits.remove_prefix(1);
    const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (hexadecimal) digits.remove_prefix(2);

    const char* end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number.magnitude, hexadecimal ? 16 : 10);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

std::optional<double> realNumber(std::string_view content) {
    auto digits = trimmed(content);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    double number = 0;
    const char* end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> exactly(const WholeNumber& number) {
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    if (number.magnitude > largest + (number.negative ? 1 : 0)) return std::nullopt;
    return static_cast<std::int64_t>(number.negative ? 0 - number.magnitude : number.magnitude);
}

std::optional<std::int64_t> exactly(double number) {
    // The largest integer isn't a double itself, the power of two behind it is.
    constexpr auto lowest = static_cast<double>(std::numeric_limits<std::int64_t>::min());
    if (!(number >= lowest && number < -lowest) || std::trunc(number) != number) return std::nullopt;
    return static_cast<std::int64_t>(number);
}

std::int32_t heldToRange(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp(number, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

/// Whether the bytes of `xml` mean what UTF-8 says they mean.
bool isDeclaredAsUTF8(std::string_view xml) {
    if (!xml.starts_with("<?xml")) return true;
    auto encoding = xml.substr(0, xml.find("?>"));
    const auto name = encoding.find("encoding");
    if (name == std::string_view::npos) return true;
    encoding.remove_prefix(name);
    constexpr std::string_view same[] = {"\"UTF-8\"", "'UTF-8'", "\"utf-8\"", "'utf-8'"};
    const auto isDeclared = [&](std::string_view quoted) { return encoding.find(quoted) != std::string_view::npos; };
    if (std::any_of(std::begin(same), std::end(same), isDeclared)) return true;
    return std::all_of(xml.begin(), xml.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

}  // namespace

/// Reads one XML list from its start to its end. It keeps its own stack of open containers, so that a list's nesting
/// costs no stack of the process. Stricter than XML where property lists are: no tag but theirs, no attribute but the
/// top's, no entities of the document's own.
class PropertyList::Reader {
public:
    explicit Reader(std::string_view xml) : rest_(xml) {}

    std::optional<PropertyList> read() {
        PropertyList list;
        if (!skipBetween(true)) return std::nullopt;
        auto tag = takeTag();
        const bool wrapped = tag && tag->name == "plist" && tag->kind == Tag::opening;
        if (wrapped) {
            if (!skipBetween()) return std::nullopt;
            tag = takeTag();
        }
        if (!tag || tag->name != "dict" || tag->kind == Tag::closing) return std::nullopt;
        if (tag->kind == Tag::opening && !readEntries(list)) return std::nullopt;
        if (!skipBetween() || (wrapped && !takeClosing("plist")) || !skipBetween()) return std::nullopt;
        return rest_.empty() ? std::optional(std::move(list)) : std::nullopt;
    }

private:
    struct Tag {
        enum Kind { opening, closing, empty } kind;
        std::string_view name;
    };

    /// Reads up to and with the `</dict>` of the top. A key that comes twice has the value it has last.
    bool readEntries(PropertyList& list) {
        while (skipBetween()) {
            const auto tag = takeTag();
            if (!tag) return false;
            if (tag->kind == Tag::closing) return tag->name == "dict";
            const auto keyContent = takeKey(*tag);
            if (!keyContent || !skipBetween()) return false;

            const auto start = rest_;
            const auto type = takeValue();
            if (!type) return false;
            const auto element = start.substr(0, start.size() - rest_.size());
            list.entries_.insert_or_assign(*textFromXML(*keyContent),
                                           Entry{*type, std::string(*keyContent), std::string(element)});
        }
        return false;
    }

    /// Takes one value with all that is in it.
    std::optional<Type> takeValue() {
        struct Container {
            bool isDictionary;
            bool hasKey;
        };
        std::vector<Container> open;
        std::optional<Type> type;  // of the outermost
        do {
            if (!skipBetween()) return std::nullopt;
            const auto tag = takeTag();
            if (!tag) return std::nullopt;
            if (tag->kind == Tag::closing) {
                if (open.empty() || open.back().hasKey || (tag->name == "dict") != open.back().isDictionary ||
                    (tag->name != "dict" && tag->name != "array")) {
                    return std::nullopt;
                }
                open.pop_back();
            } else if (!open.empty() && open.back().isDictionary && !open.back().hasKey) {
                if (!takeKey(*tag)) return std::nullopt;
                open.back().hasKey = true;
                continue;
            } else if (tag->name == "dict" || tag->name == "array") {
                if (!type) type = Type::other;
                if (tag->kind == Tag::opening) {
                    if (open.size() == deepestNesting) return std::nullopt;
                    open.push_back({tag->name == "dict", false});
                    continue;
                }
            } else {
                const auto scalar = takeScalar(*tag);
                if (!scalar) return std::nullopt;
                if (!type) type = scalar;
            }
            if (!open.empty()) open.back().hasKey = false;
        } while (!open.empty());
        return type;
    }

    std::optional<Type> takeScalar(const Tag& tag) {
        constexpr std::pair<std::string_view, Type> types[] = {
            {"true", Type::trueValue}, {"false", Type::falseValue}, {"integer", Type::integer}, {"real", Type::real},
            {"string", Type::string},  {"date", Type::other},       {"data", Type::other}};
        for (const auto& [name, type] : types) {
            if (tag.name == name) return takeContent(tag) ? std::optional(type) : std::nullopt;
        }
        return std::nullopt;
    }

    std::optional<std::string_view> takeKey(const Tag& tag) {
        return tag.name == "key" && tag.kind != Tag::closing ? takeContent(tag) : std::nullopt;
    }

    /// The text between `tag` and its closing one, both of which it takes.
    std::optional<std::string_view> takeContent(const Tag& tag) {
        if (tag.kind == Tag::empty) return std::string_view();
        const auto start = rest_;
        while (true) {
            const auto next = rest_.find('<');
            if (next == std::string_view::npos) return std::nullopt;
            rest_.remove_prefix(next);
            if (!rest_.starts_with("<!")) break;
            if (!skipSpan("<!--", "-->") && !skipSpan("<![CDATA[", "]]>")) return std::nullopt;
        }
        const auto content = start.substr(0, start.size() - rest_.size());
        return takeClosing(tag.name) && textFromXML(content) ? std::optional(content) : std::nullopt;
    }

    bool takeClosing(std::string_view name) {
        const auto tag = takeTag();
        return tag && tag->kind == Tag::closing && tag->name == name;
    }

    std::optional<Tag> takeTag() {
        if (!rest_.starts_with('<')) return std::nullopt;
        const auto end = rest_.find('>');
        if (end == std::string_view::npos) return std::nullopt;
        auto inside = rest_.substr(1, end - 1);
        rest_.remove_prefix(end + 1);

        Tag tag{Tag::opening, {}};
        if (inside.starts_with('/')) {
            tag.kind = Tag::closing;
            inside.remove_prefix(1);
        } else if (inside.ends_with('/')) {
            tag.kind = Tag::empty;
            inside.remove_suffix(1);
        }
        tag.name = inside.substr(0, inside.find_first_of(whiteSpace));
        const auto attributes = trimmed(inside.substr(tag.name.size()));
        const bool mayHaveAttributes = tag.name == "plist" && tag.kind == Tag::opening;
        return attributes.empty() || mayHaveAttributes ? std::optional(tag) : std::nullopt;
    }

    /// Skips white space, comments and processing instructions, and before the top the document type. False when one
    /// of them doesn't end, or a document type brings declarations of its own.
    bool skipBetween(bool beforeTop = false) {
        while (true) {
            rest_.remove_prefix(std::min(rest_.find_first_not_of(whiteSpace), rest_.size()));
            if (rest_.starts_with("<!--")) {
                if (!skipSpan("<!--", "-->")) return false;
            } else if (rest_.starts_with("<?")) {
                if (!skipSpan("<?", "?>")) return false;
            } else if (beforeTop && rest_.starts_with("<!DOCTYPE")) {
                const auto end = rest_.find_first_of("[>");
                if (end == std::string_view::npos || rest_[end] == '[') return false;
                rest_.remove_prefix(end + 1);
            } else {
                return true;
            }
        }
    }

    bool skipSpan(std::string_view opening, std::string_view closing) {
        if (!rest_.starts_with(opening)) return false;
        const auto end = rest_.find(closing, opening.size());
        if (end == std::string_view::npos) return false;
        rest_.remove_prefix(end + closing.size());
        return true;
    }

    std::string_view rest_;
};

std::string_view PropertyList::Entry::content() const {
    const std::string_view whole = element;
    const auto start = whole.find('>') + 1;
    const auto end = whole.rfind("</");
    return end == std::string_view::npos ? std::string_view() : whole.substr(start, end - start);
}

std::optional<PropertyList> PropertyList::parse(std::string_view bytes) {
    if (bytes.size() > largestPropertyList) return std::nullopt;
    std::optional<std::string> converted;
    if (isBinaryPropertyList(bytes)) {
        converted = xmlFromBinaryPropertyList(bytes);
        if (!converted) return std::nullopt;
        bytes = *converted;
    }
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    if (!isText(bytes) || !isDeclaredAsUTF8(bytes)) return std::nullopt;
    return Reader(bytes).read();
}

PreferenceValue PropertyList::value(std::string_view key) const {
    const Entry* entry = find(key);
    if (!entry) return Absent{};
    switch (entry->type) {
        case Type::falseValue:
            return false;
        case Type::trueValue:
            return true;
        case Type::string:
            return *textFromXML(entry->content());
        case Type::integer:
        case Type::real: {
            const auto number = integer(key);
            const bool fits =
                number && *number >= std::numeric_limits<long>::min() && *number <= std::numeric_limits<long>::max();
            return Number{fits ? std::optional(static_cast<long>(*number)) : std::nullopt};
        }
        case Type::other:
            break;
    }
    return OtherType{};
}

std::optional<std::int64_t> PropertyList::integer(std::string_view key) const {
    const Entry* entry = find(key);
    if (entry && entry->type == Type::integer) {
        if (const auto number = wholeNumber(entry->content())) return exactly(*number);
    }
    if (entry && entry->type == Type::real) {
        if (const auto number = realNumber(entry->content())) return exactly(*number);
    }
    return std::nullopt;
}

std::optional<std::int32_t> PropertyList::intValue(std::string_view key) const {
    const Entry* entry = find(key);
    if (!entry) return std::nullopt;
    switch (entry->type) {
        case Type::falseValue:
            return 0;
        case Type::trueValue:
            return 1;
        case Type::integer:
            if (const auto number = wholeNumber(entry->content())) {
                return static_cast<std::int32_t>(number->negative ? 0 - number->magnitude : number->magnitude);
            }
            return std::nullopt;
        case Type::real:
            if (const auto number = realNumber(entry->content()); number && !std::isnan(*number)) {
                return heldToRange(*number);
            }
            return std::nullopt;
        case Type::string:
        case Type::other:
            break;
    }
    return std::nullopt;
}

void PropertyList::setBoolean(std::string_view key, bool flag) {
    set(key, flag ? Type::trueValue : Type::falseValue, flag ? "<true/>" : "<false/>");
}

void PropertyList::setInteger(std::string_view key, std::int64_t number) {
    set(key, Type::integer, "<integer>" + std::to_string(number) + "</integer>");
}

void PropertyList::setString(std::string_view key, std::string_view text) {
    set(key, Type::string, "<string>" + xmlFromText(text) + "</string>");
}

void PropertyList::remove(std::string_view key) {
    const auto found = entries_.find(key);
    if (found != entries_.end()) entries_.erase(found);
}

void PropertyList::copyEntry(std::string_view key, const PropertyList& other) {
    const Entry* entry = other.find(key);
    if (!entry) {
        remove(key);
    } else if (this != &other) {
        entries_.insert_or_assign(std::string(key), *entry);
    }
}

bool PropertyList::hasSameEntry(std::string_view key, const PropertyList& other) const {
    const Entry* mine = find(key);
    const Entry* others = other.find(key);
    if (!mine || !others) return mine == others;
    if (mine->type != others->type) return false;
    switch (mine->type) {
        case Type::falseValue:
        case Type::trueValue:
            return true;
        case Type::string:
            return textFromXML(mine->content()) == textFromXML(others->content());
        case Type::integer:
            if (const auto number = integer(key)) return number == other.integer(key);
            break;
        case Type::real:
        case Type::other:
            break;
    }
    return mine->element == others->element;
}

std::vector<std::string> PropertyList::keys() const {
    std::vector<std::string> keys;
    keys.reserve(entries_.size());
    for (const auto& [key, entry] : entries_) keys.push_back(key);
    return keys;
}

std::string PropertyList::toXML() const {
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n"
        "<dict>\n";
    for (const auto& [key, entry] : entries_) {
        xml += "\t<key>" + withPlainSurrogatePairs(entry.keyContent) + "</key>\n";
        xml += '\t' + withPlainSurrogatePairs(entry.element) + '\n';
    }
    xml += "</dict>\n</plist>\n";
    return xml;
}

const PropertyList::Entry* PropertyList::find(std::string_view key) const {
    const auto found = entries_.find(key);
    return found == entries_.end() ? nullptr : &found->second;
}

void PropertyList::set(std::string_view key, Type type, std::string element) {
    entries_.insert_or_assign(std::string(key), Entry{type, xmlFromText(key), std::move(element)});
}

}  // namespace vantrel::posix
