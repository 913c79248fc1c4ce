// The program's entry point: chooses between playing in sequence and seeking frames, and drives the
// chosen player to the end.
#include <cstdlib>

#include "base/output.h"
#include "playback/advanced_playback_interface.h"
#include "playback/options.h"
#include "playback/playback_interface.h"

namespace kestrail {
namespace {

void PlayInSequence(const SOptions& options) {
    PlaybackInterface playback;
    if (!playback.LoadTrace(options.tracePath, options.wholeFile)) return;
    if (!options.skipCallOnError) output::Print("****** NoskipCallOnError enable ******\n");
    // Kept: said a second time, in other words than Run's; scripts look for either.
    if (options.sync) output::Print("****** Sync enable ******\n");
    if (options.skipRangeGiven) {
        output::Print("****** SkipFrames enable: [%d - %d]\n", options.skipRangeStart,
                      options.skipRangeEnd);
        playback.SetOption(kOptionSkipRangeStart, options.skipRangeStart);
        playback.SetOption(kOptionSkipRangeEnd, options.skipRangeEnd);
    }
    playback.SetOption(kOptionSkipCallOnError, options.skipCallOnError ? 1 : 0);
    playback.SetOption(kOptionSync, options.sync ? 1 : 0);
    playback.Play();
}

void PlaySoughtFrames(const SOptions& options) {
    AdvancedPlaybackInterface playback;
    if (!playback.LoadTrace(options.tracePath, true)) return;
    // Kept: reaches no player, nor do the other options; tools compare pictures of sought frames.
    playback.SetOption(kOptionSync, options.sync ? 1 : 0);
    const auto count = static_cast<std::int32_t>(playback.GetTrace()->FrameCount());
    if (options.random) {
        // Kept: never seeded, and one play fewer than asked; tools compare the logs of two runs.
        for (std::int32_t i = 1; i < options.iterations && count > 0; ++i) {
            playback.PlayFrame(std::rand() % count + 1);
        }
    } else if (options.frame != -1) {
        if (options.frame <= count) playback.PlayFrame(options.frame);
    } else {
        // Kept: all but the last; scripts count the pictures that they get.
        for (std::int32_t frame = 1; frame < count; ++frame) {
            playback.PlayFrame(frame);
        }
    }
}

void Run(int argumentCount, const char* const* arguments) {
    output::Message("Running KestrailPlayback....");
    if (argumentCount <= 1) return PrintUsage(argumentCount == 1 ? arguments[0] : "");
    const SOptions options = ParseOptions(argumentCount, arguments);
    if (!options.wholeFile) {
        if (options.advanced) {
            return output::Print(
                "****** Advance options are not compatible with --noMemory option. Abort "
                "******\n");
        }
        output::Print("****** Low Memory option enabled ******\n");
    }
    if (options.sync) output::Print("****** Sync enabled ******\n");
    if (options.advanced) {
        PlaySoughtFrames(options);
    } else {
        PlayInSequence(options);
    }
}

}  // namespace
}  // namespace kestrail

/// What `use` of QNX finds in the program's file and shows.
[[gnu::used, gnu::section("QNX_usage")]] static const char g_usageRecord[] =
    "%C - Play back a Kestrail recording\n";

int main(int argumentCount, char** arguments) {
    kestrail::output::FlushOnAnyExit();
    kestrail::Run(argumentCount, arguments);
    kestrail::output::Flush();
    // Kept: 0 however it went; scripts around the player tell a failure by its text.
    return 0;
}
