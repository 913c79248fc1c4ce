// Plays an input as a trace on a host that does nothing: in sequence, whole and streamed, by
// seeking its frames, and by rendering them alone.
#include <algorithm>

#include "base/output.h"
#include "fuzz/fuzz_input.h"
#include "host/host_lib.h"
#include "playback/advanced_playback_interface.h"
#include "playback/frame_renderer.h"
#include "playback/playback_interface.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

/// A full block for each of the loads would take most of the time.
constexpr std::uint32_t kBlock = 0x100000;

/// The program ends with these on purpose.
template <typename Play>
void Permit(Play play) {
    try {
        play();
    } catch (const char*) {
    } catch (const CHostLibException&) {
    }
    output::Flush();
}

/// The number of calls.
std::uint32_t PlayWhole(const char* path) {
    PlaybackInterface playback;
    if (!playback.LoadTrace(path, true)) return 0;
    playback.SetOption(kOptionSync, 0);
    playback.Play();
    CFrameStore* store = CTraceDocument::Instance()->GetFrameStore();
    return store != nullptr ? store->CallCount() : 0;
}

/// As `CSequentialPlayer::PlayStream` with an end, which a stream with a section of state has not.
void PlayStreamed(const char* path, std::uint32_t mostCalls) {
    PlaybackInterface playback;
    if (!playback.LoadTrace(path, false)) return;
    CFrameStore* store = CTraceDocument::Instance()->GetFrameStore();
    if (store == nullptr) return;
    CSequentialPlayer player;
    player.SetTrace(store);
    player.SetSkipCallOnError(false);
    try {
        CCallEntry* entry = nullptr;
        for (; mostCalls > 0 && (entry = store->NextCall()) != nullptr; --mostCalls) {
            player.PlayCall(entry, true);
        }
    } catch (...) {
        // By whatever it is thrown, it ends the playback.
    }
}

void PlaySoughtFrames(const char* path) {
    constexpr std::int32_t kInOrder = 4;
    constexpr std::int32_t kScattered = 4;
    AdvancedPlaybackInterface playback;
    if (!playback.LoadTrace(path, true)) return;
    const auto count = static_cast<std::int32_t>(playback.GetTrace()->FrameCount());
    for (std::int32_t frame = 1; frame <= std::min(count, kInOrder); ++frame) {
        playback.PlayFrame(frame);
    }
    for (std::int32_t i = 0; i < kScattered && count > 0; ++i) {
        playback.PlayFrame(count - i * 7 % count);
    }
}

void RenderFrames(const char* path) {
    CTraceDocument document(output::Printed());
    document.Stream().Memory().Allocate(kBlock);
    document.SetTrackState(false);
    document.OpenTrace(path, true);
    CFrameStore* const trace = document.GetFrameStore();
    if (trace == nullptr || trace->CallCount() == 0) return;
    const std::uint32_t last = ShownFrames(*trace);
    CSlicer slicer(*trace);
    CFrameRenderer renderer(*trace, output::Printed(), EScreen::kWindows);
    const auto ignore = [](const SRenderedFrame&) {};
    renderer.Render(slicer, {last}, ignore);
    renderer.Render(slicer, {1, 2, last}, ignore);
    PictureInTrace(*trace, last);
}

}  // namespace
}  // namespace kestrail

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    kestrail::Silence();
    kestrail::SetReadBlock(kestrail::kBlock);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* path = kestrail::CInputFile::With(data, size).Path();
    std::uint32_t calls = 0;
    kestrail::Permit([&] { calls = kestrail::PlayWhole(path); });
    kestrail::Permit([&] { kestrail::PlayStreamed(path, 2 * calls + 16); });
    kestrail::Permit([path] { kestrail::PlaySoughtFrames(path); });
    kestrail::Permit([path] { kestrail::RenderFrames(path); });
    return 0;
}
