#include "slicing/slicer.h"

#include <utility>

namespace kestrail {

bool IsLeftOut(CFrameStore& trace, std::uint32_t call) {
    const CApiCall& known = *trace.CallAt(call)->call;
    return known.HadFailed() || (known.m_edited && trace.Edits().IsCallDisabled(call));
}

/// The way from stretches back to what they stand on.
struct CSlicer::SWalk {
    std::vector<std::uint32_t> waiting;
    /// By call: what stands on it, 0 if nothing does; its own number in a stretch.
    std::vector<std::uint32_t> reasons;
    /// Of objects, the last stretch in which they were read whole: what happens to them from there
    /// on, up to its end, is in there.
    std::vector<std::uint32_t> readWhole;

    void Visit(std::uint32_t call, std::uint32_t reason) {
        if (call == 0 || call >= reasons.size() || reasons[call] != 0) return;
        reasons[call] = reason;
        waiting.push_back(call);
    }
};

CSlicer::CSlicer(CFrameStore& trace)
    : m_trace(trace), m_effects([&trace](std::uint32_t number) -> const CApiCall& {
          return *trace.CallAt(number)->call;
      }) {
    for (std::uint32_t number = 1; number <= trace.CallCount(); ++number) {
        if (!IsLeftOut(trace, number)) m_effects.Note(*trace.CallAt(number)->call, number);
    }
}

SSlice CSlicer::Slice(const std::vector<SStretch>& stretches, EUnused unused) {
    SSlice slice;
    if (stretches.empty()) return slice;
    ++m_visit;
    SWalk walk;
    walk.reasons.resize(stretches.back().last + 1);
    walk.readWhole.resize(m_effects.ObjectCount());
    for (const SStretch& stretch : stretches) {
        for (std::uint32_t call = stretch.first; call <= stretch.last; ++call) {
            walk.reasons[call] = call;
        }
    }
    for (std::uint32_t i = 0; i < stretches.size(); ++i) {
        for (std::uint32_t call = stretches[i].first; call <= stretches[i].last; ++call) {
            if (!IsLeftOut(m_trace, call)) Follow(walk, call, i + 1);
        }
    }
    const std::uint32_t first = stretches.front().first;
    if (unused == EUnused::kKept) CountUnused(walk, first, true);
    while (!walk.waiting.empty()) {
        const std::uint32_t call = walk.waiting.back();
        walk.waiting.pop_back();
        Follow(walk, call, 0);
        const auto [begin, end] = m_effects.Endings().equal_range(call);
        for (auto ending = begin; ending != end; ++ending) walk.Visit(ending->second, call);
    }
    slice.unused = CountUnused(walk, first, false);
    for (std::uint32_t call = 1; call < walk.reasons.size(); ++call) {
        if (walk.reasons[call] == 0 || walk.reasons[call] == call) continue;
        slice.calls.push_back(call);
        slice.reasons.push_back(walk.reasons[call]);
    }
    return slice;
}

void CSlicer::FollowJournal(SWalk& walk, std::uint32_t number, std::uint32_t call) {
    SJournal& journal = m_effects.Journal(number);
    std::uint32_t next = journal.Find(call);
    while (next != 0) {
        SJournal::SEntry& entry = journal.entries[next - 1];
        if (entry.visit == m_visit) break;
        entry.visit = m_visit;
        walk.Visit(entry.call, call);
        next = entry.previous;
    }
}

void CSlicer::Follow(SWalk& walk, std::uint32_t call, std::uint32_t stretch) {
    m_reads.journals.clear();
    m_reads.objects.clear();
    m_effects.ListReads(*m_trace.CallAt(call)->call, call, m_reads);
    for (const std::uint32_t journal : m_reads.journals) FollowJournal(walk, journal, call);
    for (const std::uint32_t object : m_reads.objects) {
        if (stretch != 0 && std::exchange(walk.readWhole[object], stretch) == stretch) continue;
        for (const std::uint32_t journal : m_effects.Object(object).journals) {
            FollowJournal(walk, journal, call);
        }
    }
}

std::uint32_t CSlicer::CountUnused(SWalk& walk, std::uint32_t call, bool keep) {
    std::uint32_t count = 0;
    for (std::uint32_t number = 1; number < m_effects.ObjectCount(); ++number) {
        const SObject& object = m_effects.Object(number);
        const bool there = object.born != 0 && object.born < call && object.name != 0 &&
                           (object.died == 0 || object.died >= call);
        if (!there || walk.reasons[object.born] != 0) continue;
        ++count;
        if (!keep) continue;
        for (const std::uint32_t journal : object.journals) FollowJournal(walk, journal, call);
    }
    return count;
}

}  // namespace kestrail
