#include "platform/linux/SysfsProcessors.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "platform/posix/FileContents.h"

namespace vantrel::linux {

namespace {

/// No file of the kernel is longer: each fits a page.
constexpr std::size_t longestFile = 4096;

/// Far more processors than the kernel can be built for. A list that names one beyond is none of the kernel's.
constexpr std::int32_t mostProcessors = 65536;

/// Takes a number off the front of `text`.
std::optional<std::int32_t> takeNumber(std::string_view& text) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

bool takeCharacter(std::string_view& text, char character) {
    if (!text.starts_with(character)) return false;
    text.remove_prefix(1);
    return true;
}

/// The processors that a list such as "0-3,8,10-11" names; none when it is no such list.
std::set<std::int32_t> processorsIn(std::string_view list) {
    std::set<std::int32_t> processors;
    do {
        const auto first = takeNumber(list);
        const auto last = takeCharacter(list, '-') ? takeNumber(list) : first;
        if (!first || !last || *first < 0 || *last < *first || *last >= mostProcessors) return {};
        for (auto processor = *first; processor <= *last; ++processor) processors.insert(processor);
    } while (takeCharacter(list, ','));
    takeCharacter(list, '\n');
    if (!list.empty()) return {};
    return processors;
}

/// The number that is all of the file at `path`.
std::optional<std::int32_t> numberIn(posix::SystemCalls& calls, const std::string& path) {
    const auto contents = posix::contentsOfFile(calls, path, longestFile);
    if (!contents) return std::nullopt;
    std::string_view text = *contents;
    const auto number = takeNumber(text);
    takeCharacter(text, '\n');
    return text.empty() ? number : std::nullopt;
}

}  // namespace

std::int32_t SysfsProcessors::physicalCPUCount() {
    const auto online = processorsIn(posix::contentsOfFile(calls_, root_ + "/online", longestFile).value_or(""));
    if (online.empty()) return static_cast<std::int32_t>(std::max(calls_.sysconf(_SC_NPROCESSORS_ONLN), 0L));

    std::set<std::pair<std::int32_t, std::int32_t>> cores;
    std::int32_t coresOfTheirOwn = 0;
    for (const auto processor : online) {
        const std::string topology = root_ + "/cpu" + std::to_string(processor) + "/topology/";
        const auto package = numberIn(calls_, topology + "physical_package_id");
        const auto core = numberIn(calls_, topology + "core_id");
        if (package.value_or(-1) < 0 || core.value_or(-1) < 0) {
            ++coresOfTheirOwn;
        } else {
            cores.emplace(*package, *core);
        }
    }
    return static_cast<std::int32_t>(cores.size()) + coresOfTheirOwn;
}

}  // namespace vantrel::linux
