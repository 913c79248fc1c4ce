#include "tracefile/bytes/file_frame.h"

#include <cstring>
#include <string_view>

namespace kestrail {
namespace {

constexpr std::string_view kMagic = "Kestrail";
constexpr std::uint32_t kByteOrder = 0xFFFE0100;
constexpr std::uint32_t kWrittenVersion = 14;
constexpr std::uint32_t kWrittenTypeSet = 2;

void AppendUInt32(std::vector<std::uint8_t>& out, std::uint32_t value) {
    const std::size_t at = out.size();
    out.resize(at + sizeof value);
    std::memcpy(out.data() + at, &value, sizeof value);
}

}  // namespace

std::vector<std::uint8_t> TraceFileStart(bool dataFlag, bool secondFlag) {
    std::vector<std::uint8_t> out(kMagic.begin(), kMagic.end());
    AppendUInt32(out, kByteOrder);
    AppendUInt32(out, kWrittenVersion);
    out.push_back(dataFlag ? 1 : 0);
    out.push_back(secondFlag ? 1 : 0);
    AppendUInt32(out, kWrittenTypeSet);
    out.push_back(kWrittenWidths.size());
    for (const std::int8_t width : kWrittenWidths) out.push_back(static_cast<std::uint8_t>(width));
    return out;
}

std::vector<std::uint8_t> TraceFileHeader() {
    std::vector<std::uint8_t> out = TraceFileStart(true, true);
    AppendUInt32(out, 0);
    AppendUInt32(out, 0);
    return out;
}

std::vector<std::uint8_t> TraceFileFooter(std::uint64_t stateOffset) {
    std::vector<std::uint8_t> out = {19, 16};
    AppendUInt32(out, static_cast<std::uint32_t>(stateOffset));
    AppendUInt32(out, static_cast<std::uint32_t>(stateOffset >> 32));
    return out;
}

}  // namespace kestrail
