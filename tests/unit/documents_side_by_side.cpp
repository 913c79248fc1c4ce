// Traces that are open side by side, in two threads, read as each does alone. Without a host, which
// reading doesn't need.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/recordings.h"
#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

struct STold : Diagnostics {
    void OnTold(EDiagnostic, const char* format, std::va_list arguments) override {
        text.AppendFormatV(format, arguments);
    }
    TextWriter text;
};

/// One trace, loaded and streamed at the same time.
class CReading {
public:
    explicit CReading(const std::string& path) {
        EXPECT_EQ(m_whole.OpenTrace(path.c_str(), true), 0U) << path;
        EXPECT_EQ(m_stream.OpenTrace(path.c_str(), false), 0U) << path;
        m_store = m_whole.GetFrameStore();
    }
    /// Reads the next call of both, and at each frame's end what it leaves behind. False at the
    /// end.
    bool Step() {
        CCallEntry* const call = m_store->CallAt(++m_number);
        if (call == nullptr) return false;
        Add(*call);
        Add(*m_stream.GetFrameStore()->NextCall());
        const std::uint32_t frame = m_store->FrameOfCall(m_number - 1);
        if (frame != m_frame) m_state = m_store->StateOfFrame(m_frame = frame);
        return true;
    }
    /// All that was read. The documents are closed; calls and the state of the last frame stay.
    std::string Summary() {
        const std::shared_ptr<STraceCalls> calls = m_store->Calls();
        m_told.text.AppendFormat("%u frames, %u calls", m_store->FrameCount(),
                                 m_store->CallCount());
        m_whole.CloseTrace();
        m_stream.CloseTrace();
        for (CCallEntry& call : calls->list) Add(call);
        for (std::int32_t i = 0; i < m_state.es2->buffers->Count(); ++i) {
            std::vector<std::uint8_t> room;
            const CSharedBytes& data = m_state.es2->buffers->ValueAt(i)->data;
            if (data.Empty()) continue;
            AddText({reinterpret_cast<const char*>(data.Get(room)), data.Size()});
        }
        return std::string(m_told.text.View()) + ", " + std::to_string(m_hash);
    }

private:
    void AddText(std::string_view text) {
        m_hash = m_hash * 1000003 + std::hash<std::string_view>()(text);
    }
    void Add(CCallEntry& entry) { AddText(LineOf(entry.GetInfo())); }

    STold m_told;
    CTraceDocument m_whole{m_told}, m_stream{m_told};
    CFrameStore* m_store = nullptr;
    SFrameState m_state;
    std::size_t m_hash = 0;
    std::uint32_t m_number = 0;
    std::uint32_t m_frame = 0;
};

TEST(Documents, SideBySideReadAsAlone) {
    const std::vector<std::filesystem::path> paths = AllTraces();
    ASSERT_GE(paths.size(), 2U);
    std::vector<std::string> alone, together(paths.size());
    for (const auto& path : paths) {
        CReading reading(path);
        while (reading.Step()) {
        }
        alone.push_back(reading.Summary());
    }
    const auto readEverySecond = [&](std::size_t first) {
        std::vector<std::unique_ptr<CReading>> readings;
        for (std::size_t i = first; i < paths.size(); i += 2) {
            readings.push_back(std::make_unique<CReading>(paths[i]));
        }
        for (bool more = true; more;) {
            more = false;
            for (const auto& reading : readings) more = reading->Step() || more;
        }
        for (std::size_t i = 0; i < readings.size(); ++i) {
            together[first + 2 * i] = readings[i]->Summary();
        }
    };
    std::thread other(readEverySecond, 1);
    readEverySecond(0);
    other.join();
    for (std::size_t i = 0; i < paths.size(); ++i) EXPECT_EQ(alone[i], together[i]) << paths[i];
}

}  // namespace
}  // namespace kestrail
