// Changes inputs as traces: whole records are moved, copied and renamed, numbers in them go to
// their edges, and header and footer lie. What isn't a trace is changed as bytes.
#include <algorithm>
#include <cstring>
#include <random>

#include "tests/support/trace_parts.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace kestrail {
namespace {

constexpr std::uint32_t kEdges[] = {
    0,          1,          2,          3,          4,          5,          7,          8,
    15,         16,         31,         32,         33,         64,         100,        127,
    128,        255,        256,        300,        0x7FFF,     0x8000,     0xFFFF,     0x10000,
    0xFFFE,     0xFFFFF,    0x1000000,  0x10000000, 0x20000000, 0x3FFFFFFF, 0x40000000, 0x55555556,
    0x7FFFFFFE, 0x7FFFFFFF, 0x80000000, 0x80000001, 0xAAAAAAAB, 0xFFFFFF00, 0xFFFFFFFE, 0xFFFFFFFF,
};

struct SFamily {
    std::uint16_t first;
    std::uint16_t last;
};

constexpr SFamily kFamilies[] = {{1001, 1034}, {2001, 2142}, {3001, 3145}, {4001, 4090},
                                 {4091, 4239}, {5001, 5246}, {1, 5}};

class CMutation {
public:
    CMutation(STraceParts& parts, unsigned seed) : m_parts(parts), m_random(seed) {}

    void Run() {
        const unsigned turns = 1 + Below(4);
        for (unsigned i = 0; i < turns; ++i) ChangeOnce();
    }

    /// Puts records of the other trace, with those around them, among ours.
    void Splice(const STraceParts& other) {
        if (other.records.empty()) return;
        const std::size_t from = Below(other.records.size());
        const std::size_t most = std::min<std::size_t>(other.records.size() - from, 16);
        const auto first = other.records.begin() + static_cast<std::ptrdiff_t>(from);
        const auto count = static_cast<std::ptrdiff_t>(1 + Below(most));
        m_parts.records.insert(At(Below(m_parts.records.size() + 1)), first, first + count);
        if (Below(8) == 0) m_parts.edits = other.edits;
        if (Below(8) == 0) m_parts.widths = other.widths;
    }

private:
    std::uint32_t Below(std::size_t bound) {
        return static_cast<std::uint32_t>(bound == 0 ? 0 : m_random() % bound);
    }
    std::uint32_t Edge() { return kEdges[Below(std::size(kEdges))]; }
    std::vector<SRecordPart>::iterator At(std::size_t index) {
        return m_parts.records.begin() + static_cast<std::ptrdiff_t>(index);
    }

    void ChangeOnce() {
        if (m_parts.records.empty()) return ChangeHeader();
        SRecordPart& record = m_parts.records[Below(m_parts.records.size())];
        switch (Below(20)) {
            case 0:
                return ChangeHeader();
            case 1:
                return ChangeTail();
            case 2:
            case 3:
                return MoveRecords();
            case 4:
                return InsertSwap();
            case 5:
                record.id = AnyId();
                return;
            case 6:
            case 7:
                record.id = SiblingOf(record.id);
                return;
            case 8:
                record.size = Below(3) == 0 ? Edge() : record.size + Below(16) - 8;
                return;
            case 9:
                record.payload.resize(
                    std::min<std::size_t>(Below(2 * record.payload.size() + 9), std::size_t{4096}));
                return record.TellSize();
            case 10:
            case 11:
            case 12:
            case 13:
            case 14:
                return ChangeNumber(record.payload);
            default:
                ChangeAsBytes(record.payload);
                return record.TellSize();
        }
    }

    void ChangeNumber(Bytes& bytes) {
        constexpr std::size_t kWord = 4;
        if (bytes.size() < kWord) return ChangeAsBytes(bytes);
        const std::size_t words = bytes.size() / kWord;
        // Numbers mostly stand at the front, what they count behind.
        const std::size_t word =
            Below(3) != 0 ? Below(std::min<std::size_t>(words, 8)) : Below(words);
        const std::size_t place = Below(4) == 0 ? Below(bytes.size() - kWord + 1) : word * kWord;
        std::uint32_t value = 0;
        std::memcpy(&value, bytes.data() + place, kWord);
        switch (Below(4)) {
            case 0:
                value += Below(9) - 4;
                break;
            case 1: {
                // The same number in two places: names that meet, counts that agree.
                const std::size_t source = Below(words) * kWord;
                std::memcpy(&value, bytes.data() + source, kWord);
                break;
            }
            default:
                value = Edge();
        }
        std::memcpy(bytes.data() + place, &value, kWord);
    }

    static void ChangeAsBytes(Bytes& bytes) {
        const std::size_t size = bytes.size();
        const std::size_t room = size + 64;
        bytes.resize(room);
        bytes.resize(LLVMFuzzerMutate(bytes.data(), size, room));
    }

    void MoveRecords() {
        std::vector<SRecordPart>& records = m_parts.records;
        const std::size_t from = Below(records.size());
        const std::size_t count = 1 + Below(std::min<std::size_t>(records.size() - from, 8));
        const std::vector<SRecordPart> moved(At(from), At(from + count));
        const unsigned way = Below(3);
        if (way != 0) records.erase(At(from), At(from + count));
        if (way != 1) records.insert(At(Below(records.size() + 1)), moved.begin(), moved.end());
    }

    void InsertSwap() {
        CTraceBuilder builder(m_parts.Version());
        builder.SwapBuffers();
        const Bytes built = builder.Build();
        STraceParts parts;
        Split(built.data(), built.size(), parts);
        if (Below(4) == 0) parts.records.assign(1, {8, AnyMarker(), Bytes(8, 1)});
        const auto place = At(Below(m_parts.records.size() + 1));
        m_parts.records.insert(place, parts.records.begin(), parts.records.end());
    }

    std::uint16_t AnyMarker() { return static_cast<std::uint16_t>(1 + Below(5)); }

    std::uint16_t AnyId() {
        const SFamily& family = kFamilies[Below(std::size(kFamilies))];
        return static_cast<std::uint16_t>(family.first + Below(family.last - family.first + 1U));
    }

    std::uint16_t SiblingOf(std::uint16_t id) {
        for (const SFamily& family : kFamilies) {
            if (id < family.first || id > family.last) continue;
            return static_cast<std::uint16_t>(family.first +
                                              Below(family.last - family.first + 1U));
        }
        return AnyId();
    }

    void ChangeHeader() {
        switch (Below(5)) {
            case 0:
                m_parts.SetVersion(Below(4) == 0 ? Edge() : 6 + Below(10));
                break;
            case 1:
                ChangeAsBytes(m_parts.start);
                break;
            case 2:
                if (!m_parts.widths.empty()) {
                    static constexpr std::int8_t kWidths[] = {0,   1,  2,  3,  4,  5,  8,    16,
                                                              127, -1, -2, -3, -4, -8, -127, -128};
                    m_parts.widths[Below(m_parts.widths.size())] =
                        static_cast<std::uint8_t>(kWidths[Below(std::size(kWidths))]);
                }
                break;
            case 3:
                ChangeNumber(m_parts.edits);
                break;
            default:
                MakeEdits();
        }
    }

    void MakeEdits() {
        CTraceBuilder builder(m_parts.Version());
        for (unsigned i = Below(4); i > 0; --i) {
            builder.Disable(1 + Below(m_parts.records.size() + 1));
        }
        for (unsigned i = Below(4); i > 0; --i) {
            builder.OverrideText(1 + Below(m_parts.records.size() + 1), "void main() {}");
        }
        const Bytes built = builder.Build();
        STraceParts parts;
        Split(built.data(), built.size(), parts);
        m_parts.edits = parts.edits;
    }

    /// Points the footer at a record, or anywhere.
    void ChangeTail() {
        std::uint64_t offset = m_parts.start.size() + m_parts.widths.size() + m_parts.edits.size();
        for (std::size_t i = Below(m_parts.records.size()); i > 0; --i) {
            offset += 6 + m_parts.records[i - 1].payload.size();
        }
        if (Below(4) == 0) offset = Edge();
        if (Below(8) == 0) offset |= std::uint64_t{Edge()} << 32;
        CTraceBuilder builder;
        builder.settings.stateOffset = offset;
        const Bytes built = builder.Build();
        m_parts.tail.assign(built.end() - 10, built.end());
        if (Below(8) == 0) ChangeAsBytes(m_parts.tail);
    }

    STraceParts& m_parts;
    std::minstd_rand m_random;
};

/// As much of the trace as there is room for: records are left off at the end.
std::size_t Store(STraceParts& parts, std::uint8_t* data, std::size_t maxSize) {
    Bytes joined = Join(parts);
    while (joined.size() > maxSize && !parts.records.empty()) {
        std::size_t excess = joined.size() - maxSize;
        while (excess > 0 && !parts.records.empty()) {
            excess -= std::min(excess, parts.records.back().payload.size() + 6);
            parts.records.pop_back();
        }
        joined = Join(parts);
    }
    const std::size_t size = std::min(joined.size(), maxSize);
    if (size != 0) std::memcpy(data, joined.data(), size);
    return size;
}

}  // namespace
}  // namespace kestrail

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    kestrail::STraceParts parts;
    if (seed % 32 == 0 || !kestrail::Split(data, size, parts) || parts.start.empty()) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    kestrail::CMutation(parts, seed).Run();
    return kestrail::Store(parts, data, maxSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* first, std::size_t firstSize,
                                                 const std::uint8_t* second, std::size_t secondSize,
                                                 std::uint8_t* out, std::size_t maxSize,
                                                 unsigned seed) {
    kestrail::STraceParts ours;
    kestrail::STraceParts theirs;
    if (!kestrail::Split(first, firstSize, ours) || !kestrail::Split(second, secondSize, theirs)) {
        return 0;
    }
    kestrail::CMutation(ours, seed).Splice(theirs);
    return kestrail::Store(ours, out, maxSize);
}
