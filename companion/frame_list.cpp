#include "companion/frame_list.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace kestrail {
namespace {

/// The whole text as a number from 1 on.
bool ParseNumber(std::string_view text, std::uint32_t& number) {
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    return problem == std::errc{} && end == text.data() + text.size() && number != 0;
}

/// Appends the frames of an item between commas.
bool AppendItem(std::string_view item, std::uint32_t count, Frames& frames) {
    constexpr std::string_view kEvery = "every:";
    std::uint32_t first = 1;
    std::uint32_t last = count;
    std::uint32_t step = 1;
    if (item.substr(0, kEvery.size()) == kEvery) {
        if (!ParseNumber(item.substr(kEvery.size()), step)) return false;
        first = step;
    } else if (item != "all") {
        const std::size_t dash = item.find('-');
        if (!ParseNumber(item.substr(0, dash), first)) return false;
        last = first;
        if (dash != std::string_view::npos && !ParseNumber(item.substr(dash + 1), last))
            return false;
        if (last < first || last > count) return false;
    }
    for (std::uint64_t frame = first; frame <= last; frame += step) {
        frames.push_back(static_cast<std::uint32_t>(frame));
    }
    return true;
}

}  // namespace

Frames ParseFrames(const std::string& list, std::uint32_t count) {
    Frames frames;
    std::string_view rest = list;
    while (true) {
        const std::size_t comma = rest.find(',');
        if (!AppendItem(rest.substr(0, comma), count, frames)) return {};
        if (comma == std::string_view::npos) break;
        rest.remove_prefix(comma + 1);
    }
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

Frames PartOf(const Frames& frames, std::size_t part, std::size_t parts) {
    const auto bound = [&](std::size_t number) {
        // Without a product that could overflow.
        const std::size_t whole = frames.size() / parts;
        const std::size_t rest = frames.size() % parts;
        return static_cast<std::ptrdiff_t>(whole * number + std::min(rest, number));
    };
    return {frames.begin() + bound(part - 1), frames.begin() + bound(part)};
}

bool ParseShard(const std::string& text, std::size_t& part, std::size_t& parts) {
    const std::size_t slash = text.find('/');
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    if (slash == std::string_view::npos ||
        !ParseNumber(std::string_view(text).substr(0, slash), first) ||
        !ParseNumber(std::string_view(text).substr(slash + 1), second)) {
        return false;
    }
    part = first;
    parts = second;
    return part <= parts;
}

}  // namespace kestrail
