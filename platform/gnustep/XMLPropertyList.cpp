#include "platform/gnustep/XMLPropertyList.h"

#include <libxml/parserInternals.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/PropertyListText.h"
#include "platform/gnustep/XMLCharacters.h"

namespace vantrel::gnustep {
namespace {

/// Without XML_PARSE_HUGE, libxml2 keeps to its own bounds.
constexpr int parseOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

bool isContainer(std::string_view name) {
    return name == "dict" || name == "array";
}

bool isValue(std::string_view name) {
    constexpr std::array<std::string_view, 7> scalars{"true", "false", "integer", "real", "string", "date", "data"};
    return isContainer(name) || std::find(scalars.begin(), scalars.end(), name) != scalars.end();
}

/// Follows libxml2 through a list, and cuts the entries out of the bytes that it reads.
class Reader {
public:
    explicit Reader(std::string_view xml)
        : xml_(xml), context_(xmlCreateMemoryParserCtxt(xml.data(), static_cast<int>(xml.size())), xmlFreeParserCtxt) {
        if (!context_) return;
        *context_->sax = handler();
        context_->userData = this;
        xmlCtxtUseOptions(context_.get(), parseOptions);
    }

    std::optional<PropertyListEntries> read() {
        if (!context_) return std::nullopt;
        xmlParseDocument(context_.get());
        // To libxml2, a NUL behind the list is the end.
        const bool isWhole = isSound_ && context_->wellFormed != 0 && position() == xml_.size();
        return isWhole ? std::optional(std::move(entries_)) : std::nullopt;
    }

    /// Whether `read` gave up because the list is in another encoding than UTF-8.
    bool isEncoded() const { return isEncoded_; }

private:
    struct Element {
        std::string_view name;
        std::size_t start;
        /// Whether it must not end yet: a dictionary after a key, a list without its dictionary.
        bool expectsValue;
    };

    static xmlSAXHandler handler() {
        xmlSAXHandler handler{};
        handler.initialized = XML_SAX2_MAGIC;
        handler.startDocument = [](void* reader) { of(reader).startDocument(); };
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
        return handler;
    }

    static Reader& of(void* reader) { return *static_cast<Reader*>(reader); }

    void require(bool isSound) {
        if (isSound) return;
        isSound_ = false;
        xmlStopParser(context_.get());
    }

    void startDocument() {
        isEncoded_ = context_->input->buf->encoder != nullptr;
        require(!isEncoded_);
    }

    /// libxml2 stands at the end of the tag.
    void startElement(std::string_view name, bool isPlain) {
        require((isPlain || name == "plist") && fits(name));
        if (!isSound_) return;
        if (!open_.empty()) open_.back().expectsValue = name == "key";
        open_.push_back({name, xml_.rfind('<', position()), name == "plist"});
    }

    bool fits(std::string_view name) const {
        if (open_.empty()) return name == "plist" || name == "dict";
        const auto& [parent, start, expectsValue] = open_.back();
        if (parent == "plist") return name == "dict" && expectsValue;
        if (parent == "dict" && !expectsValue) return name == "key";
        return isContainer(parent) && isValue(name) && (!isContainer(name) || open_.size() - top() <= deepestNesting);
    }

    /// libxml2 stands behind the tag.
    void endElement() {
        const Element ended = open_.back();
        require(!ended.expectsValue);
        open_.pop_back();
        if (open_.size() == top() + 1) {
            auto element = withPairsRead(xml_.substr(ended.start, position() - ended.start));
            auto text = withEscapesRead(text_);
            if (ended.name == "key") {
                key_ = std::move(text);
                keyElement_ = std::move(element);
            } else {
                entries_[key_] = {keyElement_, std::move(element), std::string(ended.name), std::move(text)};
            }
        }
        text_.clear();
    }

    /// One text may come in several pieces.
    void takeText(std::string_view text) {
        const bool isContent = !open_.empty() && open_.back().name != "plist" && !isContainer(open_.back().name);
        if (isContent) {
            text_ += text;
        } else {
            require(trimmed(text).empty());
        }
    }

    /// How many elements stand around the dictionary at the top.
    std::size_t top() const { return !open_.empty() && open_.front().name == "plist" ? 1 : 0; }

    std::size_t position() const { return static_cast<std::size_t>(xmlByteConsumed(context_.get())); }

    std::string_view xml_;
    std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context_;
    bool isSound_ = true;
    bool isEncoded_ = false;
    std::vector<Element> open_;
    std::string text_;
    std::string key_;
    std::string keyElement_;
    PropertyListEntries entries_;
};

/// The XML in UTF-8; empty when libxml2 can't read it.
std::string inUTF8(std::string_view xml) {
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, parseOptions), xmlFreeDoc);
    if (!document) return {};
    xmlChar* written = nullptr;
    int length = 0;
    xmlDocDumpMemoryEnc(document.get(), &written, &length, "UTF-8");
    const std::unique_ptr<xmlChar, decltype(xmlFree)> text(written, xmlFree);
    return written ? std::string(plainCharacters(written), static_cast<std::size_t>(length)) : std::string();
}

}  // namespace

std::optional<PropertyListEntries> entriesFromXML(std::string_view xml) {
    static const bool isReady = (xmlInitParser(), true);
    if (!isReady || xml.size() > largestPropertyList) return std::nullopt;
    // More white space than 10 MB libxml2 takes for an attack.
    Reader reader(trimmed(xml));
    auto entries = reader.read();
    return reader.isEncoded() ? entriesFromXML(inUTF8(xml)) : std::move(entries);
}

}  // namespace vantrel::gnustep
