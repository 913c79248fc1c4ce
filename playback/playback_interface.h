// The front ends that the entry point talks to. They own the players and tie them to the loaded
// trace. One object serves one trace at a time, since the loaded document is one for the process.
#pragma once

#include <cstdint>
#include <memory>

#include "playback/sequential_player.h"
#include "tracefile/document/frame_store.h"

namespace kestrail {

/// What `SetOption` sets.
enum EPlaybackOption : std::uint32_t {
    kOptionSync = 0,
    kOptionUnused = 1,
    kOptionSkipCallOnError = 2,
    kOptionSkipRangeStart = 3,
    kOptionSkipRangeEnd = 4,
    kOptionSaveFrameBuffer = 5,
};

class PlaybackInterface {
public:
    PlaybackInterface() = default;
    /// Closes the trace.
    virtual ~PlaybackInterface();
    PlaybackInterface(const PlaybackInterface&) = delete;
    PlaybackInterface& operator=(const PlaybackInterface&) = delete;

    /// Loads the trace, whole or to be streamed. False when it is refused. Throws the text
    /// "Exception trying process file" when loading fails by an exception.
    bool LoadTrace(const char* path, bool wholeFile);
    /// Plays all of the trace. False when none was loaded.
    bool Play();
    /// Plays one frame, whose number is cut to 16 bits.
    bool PlayFrame(std::uint32_t frame);
    void RequestStop();

    virtual void SetTrace(CFrameStore* trace);
    virtual CFrameStore* GetTrace() { return m_trace; }
    /// Drops the player and rewinds the trace.
    virtual void Reset();
    virtual void SetOption(std::uint32_t selector, std::int32_t value);

protected:
    CSequentialPlayer& Player();

    CFrameStore* m_trace = nullptr;
    std::unique_ptr<CSequentialPlayer> m_player;
    bool m_wholeFile = true;
};

}  // namespace kestrail
