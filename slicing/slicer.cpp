#include "slicing/slicer.h"

#include <algorithm>
#include <utility>

namespace kestrail {

bool IsLeftOut(CFrameStore& trace, std::uint32_t call) {
    const CApiCall& known = *trace.CallAt(call)->call;
    return known.HadFailed() || (known.m_edited && trace.Edits().IsCallDisabled(call));
}

CSlicer::CSlicer(CFrameStore& trace)
    : m_trace(trace), m_effects([&trace](std::uint32_t number) -> const CApiCall& {
          return *trace.CallAt(number)->call;
      }) {
    std::uint32_t number = 0;
    for (const CCallEntry& entry : trace.Calls()->list) {
        ++number;
        if (entry.call->m_edited && trace.Edits().IsCallDisabled(number)) continue;
        m_effects.Note(*entry.call, number);
    }
}

void CSlicer::Visit(std::uint32_t call, const SReason& reason) {
    if (call == 0 || call >= m_end || IsVisited(call)) return;
    m_reasons[call] = reason;
    m_visited.push_back(call);
    m_waiting.push_back(call);
}

SSlice CSlicer::Slice(const std::vector<SStretch>& stretches, EUnused unused) {
    SSlice slice;
    if (stretches.empty()) return slice;
    ++m_visit;
    m_end = stretches.back().last + 1;
    m_reasons.resize(m_trace.CallCount() + 1);
    m_visited.clear();
    m_readWhole.assign(m_effects.ObjectCount(), 0);
    for (const SStretch& stretch : stretches) {
        for (std::uint32_t call = stretch.first; call <= stretch.last; ++call) {
            m_reasons[call] = {m_visit, call, 0};
        }
    }
    for (std::uint32_t i = 0; i < stretches.size(); ++i) {
        for (std::uint32_t call = stretches[i].first; call <= stretches[i].last; ++call) {
            if (!IsLeftOut(m_trace, call)) Follow(call, i + 1);
        }
    }
    const std::uint32_t first = stretches.front().first;
    if (unused == EUnused::kKept) CountUnused(first, true);
    while (!m_waiting.empty()) {
        const std::uint32_t call = m_waiting.back();
        m_waiting.pop_back();
        Follow(call, 0);
        const auto [begin, end] = m_effects.Endings().equal_range(call);
        for (auto ending = begin; ending != end; ++ending)
            Visit(ending->second, {m_visit, call, 0});
    }
    slice.unused = CountUnused(first, false);
    std::sort(m_visited.begin(), m_visited.end());
    slice.calls = m_visited;
    for (const std::uint32_t call : m_visited) {
        slice.reasons.push_back(m_reasons[call].call);
        slice.journals.push_back(m_reasons[call].journal);
    }
    return slice;
}

std::string CSlicer::ContentsOf(std::uint32_t journal) {
    const SJournal& known = m_effects.Journal(journal);
    if (known.slot != ESlot::kContent) return {};
    const SObject& object = m_effects.Object(known.object);
    const std::string name = std::to_string(object.name);
    static constexpr const char* kAspects[] = {"", " (depth)", " (stencil)"};
    const char* const aspect = kAspects[std::min<std::uint64_t>(known.place & 15, 2)];
    const std::uint64_t layer = known.place >> 4 & 0xFFFFFFF;
    switch (object.kind) {
        case EObject::kTexture:
            return "texture " + name + " (level " + std::to_string(known.place >> 32) +
                   (layer != 0 ? ", layer " + std::to_string(layer - 1) : "") + ")";
        case EObject::kBuffer:
            return "buffer " + name;
        case EObject::kRenderbuffer:
            return "renderbuffer " + name + aspect;
        case EObject::kSurface:
            return std::string("the window") + aspect;
        default:
            return {};
    }
}

void CSlicer::FollowJournal(std::uint32_t number, std::uint32_t call) {
    SJournal& journal = m_effects.Journal(number);
    std::uint32_t next = journal.Find(call);
    if (next > journal.visits.size()) journal.visits.resize(journal.entries.size());
    while (next != 0) {
        const SJournal::SEntry& entry = journal.entries[next - 1];
        if (std::exchange(journal.visits[next - 1], m_visit) == m_visit) break;
        Visit(entry.call, {m_visit, call, number});
        next = entry.previous;
    }
}

void CSlicer::Follow(std::uint32_t call, std::uint32_t stretch) {
    m_reads.journals.clear();
    m_reads.objects.clear();
    m_effects.ListReads(*m_trace.CallAt(call)->call, call, m_reads);
    for (const std::uint32_t journal : m_reads.journals) FollowJournal(journal, call);
    for (const std::uint32_t object : m_reads.objects) {
        if (stretch != 0 && std::exchange(m_readWhole[object], stretch) == stretch) continue;
        for (const std::uint32_t journal : m_effects.Object(object).journals) {
            FollowJournal(journal, call);
        }
    }
}

std::uint32_t CSlicer::CountUnused(std::uint32_t call, bool keep) {
    std::uint32_t count = 0;
    for (std::uint32_t number = 1; number < m_effects.ObjectCount(); ++number) {
        const SObject& object = m_effects.Object(number);
        const bool there = object.born != 0 && object.born < call && object.name != 0 &&
                           (object.died == 0 || object.died >= call);
        if (!there || IsVisited(object.born)) continue;
        ++count;
        if (!keep) continue;
        for (const std::uint32_t journal : object.journals) FollowJournal(journal, call);
    }
    return count;
}

}  // namespace kestrail
