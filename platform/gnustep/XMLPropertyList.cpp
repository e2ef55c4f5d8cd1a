#include "platform/gnustep/XMLPropertyList.h"

#include <iconv.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/XMLText.h"

namespace vantrel::gnustep {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// A `<plist>` with its version has 21 bytes, Apple's document type 110.
constexpr std::size_t longestTag = 1024;

/// How long a key may be, and all keys together that aren't written as they are. Nobody has megabytes of them.
constexpr std::size_t mostNames = largestPropertyList / 4;

/// As many warnings of libxml2 as don't matter. Each costs it as much as a hundred tags.
constexpr int mostWarnings = 100;

const char* plainCharacters(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

/// Where the tag that starts at `start` ends; npos when it doesn't, or is too long.
std::size_t endOfTag(std::string_view xml, std::size_t start) {
    char quote = '\0';
    const auto limit = std::min(xml.size(), start + longestTag);
    for (auto at = start + 1; at < limit && xml[at] != '<'; ++at) {
        if (xml[at] > '>') continue;
        if (quote == '\0' && xml[at] == '>') return at;
        if (quote == '\0' && (xml[at] == '"' || xml[at] == '\'')) {
            quote = xml[at];
        } else if (xml[at] == quote) {
            quote = '\0';
        }
    }
    return std::string_view::npos;
}

/// How many keys there are at most, looked up before libxml2 sees any of them: it compares the attributes and the name
/// spaces of a tag in pairs, and walks along all catalogues that a list names for each one more. Nothing when the XML
/// would have it do so for long.
std::optional<std::size_t> keysIn(std::string_view xml) {
    std::size_t keys = 0;
    for (auto at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at)) {
        const auto rest = xml.substr(at);
        if (rest.starts_with("<!--")) {
            at = xml.find("-->", at + 4);
        } else if (rest.starts_with("<![CDATA[")) {
            at = xml.find("]]>", at);
        } else if (rest.starts_with("<?")) {
            at = rest.starts_with("<?oasis-xml-catalog") ? std::string_view::npos : xml.find("?>", at);
        } else {
            keys += rest.starts_with("<key") ? 1 : 0;
            at = endOfTag(xml, at);
        }
        if (at == std::string_view::npos) return std::nullopt;
    }
    return keys;
}

enum class Kind { list, dictionary, array, key, scalar };

std::optional<Kind> kindOf(std::string_view name) {
    constexpr std::array<std::string_view, 7> scalars{"string", "integer", "true", "false", "real", "data", "date"};
    if (name == "key") return Kind::key;
    if (std::find(scalars.begin(), scalars.end(), name) != scalars.end()) return Kind::scalar;
    if (name == "dict") return Kind::dictionary;
    if (name == "array") return Kind::array;
    return name == "plist" ? std::optional(Kind::list) : std::nullopt;
}

bool isContainer(Kind kind) {
    return kind == Kind::dictionary || kind == Kind::array;
}

/// Follows libxml2 through a list, and notes where it stands.
class Reader {
public:
    /// More white space around the list than 10 MB libxml2 takes for an attack.
    explicit Reader(std::string_view xml)
        : xml_(xml),
          list_(trimmed(xml)),
          context_(xmlCreateMemoryParserCtxt(list_.data(), static_cast<int>(list_.size())), xmlFreeParserCtxt) {
        if (!context_) return;
        *context_->sax = handler();
        context_->userData = this;
        xmlCtxtUseOptions(context_.get(), XML_PARSE_NONET | XML_PARSE_IGNORE_ENC);
    }

    std::optional<XMLPropertyList> read() {
        // What starts otherwise may be in an encoding that only libxml2 knows.
        const bool isXML = list_.starts_with('<') || list_.starts_with(byteOrderMark);
        const auto keys = keysIn(list_);
        if (!isXML || !keys || !context_) return std::nullopt;
        found_.entries.reserve(*keys);
        xmlParseDocument(context_.get());
        const bool isWhole =
            isSound_ && context_->wellFormed != 0 && xmlByteConsumed(context_.get()) == static_cast<long>(list_.size());
        return isWhole ? std::optional(std::move(found_)) : std::nullopt;
    }

private:
    struct Element {
        Kind kind;
        /// Whether it must not end yet: a dictionary after a key, a list without its dictionary.
        bool expectsValue;
    };

    static xmlSAXHandler handler() {
        xmlSAXHandler handler{};
        handler.initialized = XML_SAX2_MAGIC;
        handler.internalSubset = [](void* reader, const xmlChar*, const xmlChar*, const xmlChar*) {
            of(reader).require(*of(reader).context_->input->cur != '[');
        };
        handler.reference = [](void* reader, const xmlChar*) { of(reader).require(false); };
        handler.startElementNs = [](void* reader, const xmlChar* name, const xmlChar* prefix, const xmlChar*,
                                    int namespaces, const xmlChar**, int attributes, int, const xmlChar**) {
            of(reader).startElement(plainCharacters(name), !prefix && namespaces == 0 && attributes == 0);
        };
        handler.endElementNs = [](void* reader, const xmlChar*, const xmlChar*, const xmlChar*) {
            of(reader).endElement();
        };
        handler.characters = [](void* reader, const xmlChar* text, int length) {
            of(reader).takeText({plainCharacters(text), static_cast<std::size_t>(length)});
        };
        handler.ignorableWhitespace = handler.characters;
        handler.cdataBlock = handler.characters;
        // Left to itself, libxml2 reads on behind an error, and prints it.
        handler.serror = [](void* reader, xmlErrorPtr error) {
            of(reader).require(error->level != XML_ERR_FATAL && ++of(reader).warnings_ <= mostWarnings);
        };
        return handler;
    }

    static Reader& of(void* reader) { return *static_cast<Reader*>(reader); }

    void require(bool isSound) {
        if (isSound) return;
        isSound_ = false;
        xmlStopParser(context_.get());
    }

    /// libxml2 stands at the end of the tag.
    void startElement(std::string_view name, bool isPlain) {
        const auto kind = kindOf(name);
        require(kind && (isPlain || kind == Kind::list) && fits(*kind));
        if (!isSound_) return;
        name_.clear();
        if (isInTop()) (kind == Kind::key ? entry_.start : entry_.value) = tagBefore(position());
        if (!open_.empty()) open_.back().expectsValue = kind == Kind::key;
        open_.push_back({*kind, kind == Kind::list});
    }

    bool fits(Kind kind) const {
        if (open_.empty()) return kind == Kind::list || kind == Kind::dictionary;
        const auto& [parent, expectsValue] = open_.back();
        if (parent == Kind::list) return kind == Kind::dictionary && expectsValue;
        if (parent == Kind::dictionary && !expectsValue) return kind == Kind::key;
        if (!isContainer(parent) || kind == Kind::key || kind == Kind::list) return false;
        return kind == Kind::scalar || open_.size() - around() <= deepestNesting;
    }

    /// libxml2 stands behind the tag.
    void endElement() {
        const Element ended = open_.back();
        open_.pop_back();
        if (ended.expectsValue) return require(false);
        if (isInTop() && ended.kind == Kind::key) {
            setName(entry_, withEscapesRead(name_), xml_.substr(entry_.start, position() - entry_.start), found_.names);
        } else if (isInTop()) {
            entry_.end = position();
            found_.entries.push_back(entry_);
        } else if (ended.kind == Kind::dictionary && open_.size() == around()) {
            found_.dictionaryEnd = tagBefore(position() - 1);
            found_.isOneTag = xml_[found_.dictionaryEnd + 1] != '/';
        }
    }

    /// One text may come in several pieces.
    void takeText(std::string_view text) {
        const auto kind = open_.empty() ? Kind::list : open_.back().kind;
        require(kind == Kind::key || kind == Kind::scalar || trimmed(text).empty());
        if (kind == Kind::key) name_ += text;
        require(name_.size() + found_.names.size() <= mostNames);
    }

    /// How many elements stand around the dictionary at the top.
    std::size_t around() const { return !open_.empty() && open_.front().kind == Kind::list ? 1 : 0; }

    /// Whether the innermost open element is the dictionary at the top.
    bool isInTop() const { return open_.size() == around() + 1; }

    /// Where the last tag at or before `end` starts.
    std::uint32_t tagBefore(std::uint32_t end) const { return static_cast<std::uint32_t>(xml_.rfind('<', end)); }

    std::uint32_t position() const {
        return static_cast<std::uint32_t>(list_.data() - xml_.data() + xmlByteConsumed(context_.get()));
    }

    std::string_view xml_;
    /// Without what is around it.
    std::string_view list_;
    std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context_;
    bool isSound_ = true;
    int warnings_ = 0;
    std::vector<Element> open_;
    PropertyListEntry entry_{};
    std::string name_;
    XMLPropertyList found_;
};

}  // namespace

void setName(PropertyListEntry& entry, std::string_view name, std::string_view element, std::string& names) {
    constexpr std::string_view start = "<key>";
    constexpr std::string_view end = "</key>";
    entry.isNamedApart =
        element.size() != start.size() + name.size() + end.size() || element.substr(start.size(), name.size()) != name;
    entry.name = static_cast<std::uint32_t>(entry.isNamedApart ? names.size() : entry.start + start.size());
    entry.nameLength = name.size() & 0x7FFFFFFF;
    if (entry.isNamedApart) names += name;
}

std::optional<XMLPropertyList> readXMLPropertyList(std::string_view xml) {
    static const bool isReady = (xmlInitParser(), true);
    // A NUL would be the end to libxml2, or the sign of another encoding.
    if (!isReady || xml.size() > largestPropertyList || xml.find('\0') != std::string_view::npos) return std::nullopt;
    return Reader(xml).read();
}

std::string textOf(std::string_view element) {
    const auto start = element.find('>') + 1;
    const auto end = std::max(element.rfind('<'), start);
    const auto content = element.substr(start, end - start);
    const auto isPlain = [](char character) { return character != '&' && character != '<' && character != '\r'; };
    if (std::all_of(content.begin(), content.end(), isPlain)) return withEscapesRead(content);

    std::string text;
    xmlSAXHandler handler{};
    handler.characters = [](void* text, const xmlChar* piece, int length) {
        static_cast<std::string*>(text)->append(plainCharacters(piece), static_cast<std::size_t>(length));
    };
    handler.ignorableWhitespace = handler.cdataBlock = handler.characters;
    xmlSAXUserParseMemory(&handler, &text, element.data(), static_cast<int>(element.size()));
    return withEscapesRead(text);
}

std::string encodingOf(std::string_view xml) {
    if (xml.starts_with("\xFF\xFE") || xml.starts_with("\xFE\xFF")) return "UTF-16";
    if (xml.starts_with("<\0"sv)) return "UTF-16LE";
    if (xml.starts_with("\0<"sv)) return "UTF-16BE";
    const auto declaration = xml.starts_with("<?xml") ? xml.substr(0, xml.find("?>")) : "";
    const auto start = declaration.find_first_of("\"'", declaration.find("encoding"));
    if (start == std::string_view::npos) return {};
    const std::string name(declaration.substr(start + 1, declaration.find(declaration[start], start + 1) - start - 1));
    return name == "UTF-8" || name == "utf-8" ? "" : name;
}

std::string inUTF8(std::string_view xml, const std::string& encoding) {
    const std::unique_ptr<void, decltype(&iconv_close)> converter(iconv_open("UTF-8", encoding.c_str()), iconv_close);
    if (reinterpret_cast<std::intptr_t>(converter.get()) == -1) return {};
    std::string text;
    text.reserve(std::min(2 * xml.size(), largestPropertyList));
    char* from = const_cast<char*>(xml.data());
    for (auto left = xml.size(); left > 0;) {
        std::array<char, 16384> buffer;
        char* to = buffer.data();
        auto room = buffer.size();
        const bool isDone = iconv(converter.get(), &from, &left, &to, &room) != static_cast<std::size_t>(-1);
        const std::string_view converted(buffer.data(), to);
        if ((!isDone && errno != E2BIG) || text.size() + converted.size() > largestPropertyList) return {};
        text += converted;
    }

    const std::size_t start = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    const bool isDeclared = std::string_view(text).substr(start).starts_with("<?xml");
    return text.replace(0, isDeclared ? text.find('>') + 1 : start, R"(<?xml version="1.0" encoding="UTF-8"?>)");
}

}  // namespace vantrel::gnustep
