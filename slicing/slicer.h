// Which calls a stretch of a trace stands on: those before it without which it would draw something
// else. Played in their order, with none of the others, they bring a driver from nothing to where
// the stretch begins, what frames before have left in images and buffers with it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "slicing/effects.h"
#include "tracefile/document/frame_store.h"

namespace kestrail {

/// Calls of a trace, by their numbers, both of them included.
struct SStretch {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
};

/// Objects that are there where a stretch begins, and that it doesn't use.
enum class EUnused { kLeftOut, kKept };

struct SSlice {
    /// Outside of the stretches, ascending.
    std::vector<std::uint32_t> calls;
    /// For each of them the later call that stands on it.
    std::vector<std::uint32_t> reasons;
    /// For each of them the journal of what that call stands on it for; 0 if it has none.
    std::vector<std::uint32_t> journals;
    /// Objects that are there where the first stretch begins and that no call of the slice makes.
    std::uint32_t unused = 0;
};

/// Whether the call is left out when its frame is played: it had failed, or it is disabled.
bool IsLeftOut(CFrameStore& trace, std::uint32_t call);

class CSlicer {
public:
    /// Goes through all calls of a trace, which has to be read whole and stays as it is.
    explicit CSlicer(CFrameStore& trace);

    /// What stretches stand on, which have to be ascending and in the trace.
    SSlice Slice(const std::vector<SStretch>& stretches, EUnused unused = EUnused::kLeftOut);

    /// Of a slice's journal, the image or buffer whose contents it is of, such as "texture 4 (level
    /// 0)"; empty for what isn't contents.
    std::string ContentsOf(std::uint32_t journal);

private:
    /// What a call is in the slice for.
    struct SReason {
        std::uint32_t visit = 0;
        std::uint32_t call = 0;  ///< itself in a stretch
        std::uint32_t journal = 0;
    };

    bool IsVisited(std::uint32_t call) const { return m_reasons[call].visit == m_visit; }
    void Visit(std::uint32_t call, const SReason& reason);
    /// Visits what a call stands on. `stretch`: the number of the one that it is in, or 0.
    void Follow(std::uint32_t call, std::uint32_t stretch);
    /// Visits what counts of a journal in front of a call.
    void FollowJournal(std::uint32_t number, std::uint32_t call);
    /// Objects that are there in front of the call and were made by calls that nobody visited;
    /// `keep`: visits them and all that was done to them.
    std::uint32_t CountUnused(std::uint32_t call, bool keep);

    CFrameStore& m_trace;
    CEffects m_effects;
    /// How often `Slice` was called, which tells what was visited this time.
    std::uint32_t m_visit = 0;
    /// Behind the last call of the last stretch.
    std::uint32_t m_end = 0;
    std::vector<SReason> m_reasons;  ///< by call
    std::vector<std::uint32_t> m_visited;
    std::vector<std::uint32_t> m_waiting;
    /// Of objects, the last stretch in which they were read whole: what happens to them from there
    /// on, up to its end, is in there.
    std::vector<std::uint32_t> m_readWhole;
    CEffects::SReads m_reads;
};

}  // namespace kestrail
