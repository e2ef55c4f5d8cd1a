#include "platform/gnustep/XMLEncoding.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>

#include "platform/gnustep/PropertyList.h"

namespace vantrel::gnustep {

using namespace std::string_view_literals;

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

    const std::size_t start = text.starts_with(byteOrderMark) ? std::strlen(byteOrderMark) : 0;
    const bool isDeclared = std::string_view(text).substr(start).starts_with("<?xml");
    text.replace(0, isDeclared ? text.find('>') + 1 : start, R"(<?xml version="1.0" encoding="UTF-8"?>)");
    return text;
}

}  // namespace vantrel::gnustep
