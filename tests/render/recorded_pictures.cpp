#include "tests/render/recorded_pictures.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <stdexcept>

#include "tests/support/recordings.h"
#include "tests/support/trace_parts.h"

namespace kestrail {

std::string TracePath(const std::string& name) {
    return RecordingsFolder() + "/" + name + ".kstl";
}

std::vector<std::string> TraceNames() {
    std::vector<std::string> names;
    for (const auto& path : FilesIn(RecordingsFolder(), ".kstl")) {
        names.push_back(path.lexically_relative(RecordingsFolder()).replace_extension());
    }
    return names;
}

std::string TraceTestName(const testing::TestParamInfo<std::string>& tested) {
    std::string name = tested.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

Pictures RecordedPictures(const std::string& trace) {
    constexpr std::uint16_t kSwap = 1022;
    constexpr std::size_t kNoEdits = 8;
    const Bytes bytes = ContentOf(trace);
    STraceParts parts;
    if (!Split(bytes.data(), bytes.size(), parts) || parts.Version() != 14) {
        throw std::runtime_error("not a trace of version 14");
    }
    if (parts.edits.size() != kNoEdits) throw std::runtime_error("an edited trace");
    // The types in a swap's record: pointer, EGLint, EGLBoolean, display, surface, GLuint.
    for (const std::size_t typeTag : {0U, 1U, 2U, 6U, 7U, 21U}) {
        if (std::abs(parts.Widths().at(typeTag)) != 4) {
            throw std::runtime_error("values aren't 4 bytes wide");
        }
    }
    Pictures pictures;
    unsigned number = 0;
    for (const SRecordPart& record : parts.records) {
        if (record.id != kSwap) continue;
        ++number;
        // error, result, display, surface, frame, width, height, pointer, size, bytes
        std::uint32_t words[9] = {};
        const Bytes& payload = record.payload;
        if (payload.size() < sizeof words) throw std::runtime_error("trace is cut short");
        std::memcpy(words, payload.data(), sizeof words);
        if (words[8] > payload.size() - sizeof words)
            throw std::runtime_error("trace is cut short");
        if (words[8] != 0) {
            pictures[number] = {
                words[5],
                words[6],
                {payload.begin() + sizeof words, payload.begin() + sizeof words + words[8]}};
        }
    }
    return pictures;
}

}  // namespace kestrail
