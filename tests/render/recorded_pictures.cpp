#include "tests/render/recorded_pictures.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kestrail {

namespace {

constexpr std::uint16_t swapId = 1022;
constexpr std::size_t footerSize = 10;

class CFile {
public:
    explicit CFile(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        m_bytes.assign(std::istreambuf_iterator<char>(file), {});
    }

    std::size_t Size() const { return m_bytes.size(); }
    const std::uint8_t* At(std::size_t offset, std::size_t size) const {
        if (size > Size() || offset > Size() - size) throw std::runtime_error("trace is cut short");
        return reinterpret_cast<const std::uint8_t*>(m_bytes.data()) + offset;
    }
    template <typename Value>
    std::size_t Get(std::size_t offset) const {
        Value value = 0;
        std::memcpy(&value, At(offset, sizeof value), sizeof value);
        return value;
    }
    std::size_t U32(std::size_t offset) const { return Get<std::uint32_t>(offset); }

private:
    std::vector<char> m_bytes;
};

std::size_t FirstRecord(const CFile& file) {
    constexpr std::size_t tableLength = 22;
    if (std::memcmp(file.At(0, 8), "Kestrail", 8) != 0 || file.U32(12) != 14) {
        throw std::runtime_error("not a trace of version 14");
    }
    const std::size_t count = *file.At(tableLength, 1);
    const std::uint8_t* const table = file.At(tableLength + 1, count);
    // The types in a swap's record: pointer, EGLint, EGLBoolean, display, surface, GLuint.
    for (std::size_t typeTag : {0U, 1U, 2U, 6U, 7U, 21U}) {
        if (typeTag >= count || std::abs(static_cast<std::int8_t>(table[typeTag])) != 4) {
            throw std::runtime_error("values aren't 4 bytes wide");
        }
    }
    const std::size_t lists = tableLength + 1 + count;
    if (file.U32(lists) != 0 || file.U32(lists + 4) != 0) {
        throw std::runtime_error("an edited trace");
    }
    return lists + 8;
}

}  // namespace

std::string TraceFolder() {
    const char* const folder = std::getenv("KESTRAIL_TRACES");
    return folder != nullptr ? folder : KESTRAIL_TRACES_FOLDER;
}

std::vector<std::string> TraceNames() {
    std::vector<std::string> names;
    std::error_code none;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(TraceFolder(), none)) {
        if (entry.path().extension() != ".kstl") continue;
        names.push_back(entry.path().lexically_relative(TraceFolder()).replace_extension());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string TraceTestName(const testing::TestParamInfo<std::string>& tested) {
    std::string name = tested.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

Pictures RecordedPictures(const std::string& trace) {
    const CFile file(trace);
    Pictures pictures;
    unsigned number = 0;
    std::size_t record = FirstRecord(file);
    while (record + footerSize < file.Size()) {
        const std::size_t payload = record + 6;
        if (file.Get<std::uint16_t>(record + 4) == swapId) {
            ++number;
            // error, result, display, surface, frame, width, height, pointer, size, bytes
            const std::size_t size = file.U32(payload + 32);
            const std::uint8_t* const pixels = file.At(payload + 36, size);
            if (size != 0) {
                pictures[number] = {static_cast<std::uint32_t>(file.U32(payload + 20)),
                                    static_cast<std::uint32_t>(file.U32(payload + 24)),
                                    {pixels, pixels + size}};
            }
        }
        record = payload + file.U32(record);
    }
    return pictures;
}

}  // namespace kestrail
