// Loads an input as a trace, whole and streamed, and builds all texts of its calls.
#include "base/output.h"
#include "calls/model/api_call.h"
#include "fuzz/fuzz_input.h"
#include "tracefile/bytes/memory_manager.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

/// Small, so that an input of some kilobytes needs refills.
constexpr std::uint32_t kSmallBlock = 4096;

void BuildTexts(const SApiTypeBase* value) {
    if (value == nullptr) return;
    CKSTLString text;
    CKSTLString detail;
    value->GetText(text, &detail);
    value->GetDetailText(text);
}

void BuildTexts(CCallEntry& entry) {
    // A text may be refused as the record that it shows: the player takes it as the call's end.
    try {
        const CGenCallInfo info = entry.GetInfo();
        if (const CGenCallInfo::Parameters* parameters = info.GetParameters()) {
            for (std::uint32_t i = 0; i < parameters->size(); ++i) BuildTexts((*parameters)[i]);
        }
        BuildTexts(info.GetReturnValue());
        BuildTexts(info.GetErrorValue());
    } catch (const char*) {
    }
}

/// The number of calls.
std::uint32_t LoadWhole(const char* path, std::uint32_t block) {
    std::uint32_t count = 0;
    SetReadBlock(block);
    CTraceDocument& document = *CTraceDocument::Instance();
    document.OpenTrace(path, true);
    if (CFrameStore* store = document.GetFrameStore()) {
        count = store->CallCount();
        for (std::uint32_t number = 1; number <= count; ++number) {
            BuildTexts(*store->CallAt(number));
            store->FrameOfCall(number);
        }
    }
    document.CloseTrace();
    return count;
}

/// A stream with a section of state never ends.
void LoadStreamed(const char* path, std::uint32_t block, std::uint32_t mostCalls) {
    SetReadBlock(block);
    CTraceDocument& document = *CTraceDocument::Instance();
    document.OpenTrace(path, false);
    if (CFrameStore* store = document.GetFrameStore()) {
        // A record that cannot be read ends a stream, by whatever it throws.
        try {
            store->SeekFrame(1, true);
            CCallEntry* entry = nullptr;
            for (; mostCalls > 0 && (entry = store->NextCall()) != nullptr; --mostCalls) {
                BuildTexts(*entry);
            }
        } catch (...) {
        }
    }
    document.CloseTrace();
}

}  // namespace
}  // namespace kestrail

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    kestrail::Silence();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* path = kestrail::CInputFile::With(data, size).Path();
    kestrail::LoadWhole(path, kestrail::MemoryManager::kBlockSize);
    const std::uint32_t count = kestrail::LoadWhole(path, kestrail::kSmallBlock);
    kestrail::LoadStreamed(path, kestrail::kSmallBlock, 2 * count + 16);
    kestrail::output::Flush();
    return 0;
}
