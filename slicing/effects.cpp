#include "slicing/effects.h"

#include <algorithm>
#include <utility>

#include "slicing/places.h"

namespace kestrail {
namespace {

std::uint32_t HashOf(EObject kind, std::uint32_t scope, std::uint32_t name) {
    return CFlatIndex::Hash(name, std::uint64_t{scope} << 8 | static_cast<std::uint64_t>(kind));
}

}  // namespace

std::uint32_t SJournal::Find(std::uint32_t call) const {
    const auto end = std::lower_bound(
        entries.begin(), entries.end(), call,
        [](const SEntry& entry, std::uint32_t wanted) { return entry.since < wanted; });
    return static_cast<std::uint32_t>(end - entries.begin());
}

CEffects::CEffects(FindCall findCall)
    : m_findCall(std::move(findCall)), m_objects(1), m_journals(1) {
    MakeObject(EObject::kProcess, 0, 0);
    MakeObject(EObject::kContext, 0, 0);
    m_objects[kNoContext].group = kNoContext;
    m_current = kNoContext;
}

void CEffects::Note(const CApiCall& call, std::uint32_t number) {
    if (call.HadFailed()) return;
    m_at = number;
    m_isEs1 = call.m_group == kGroupEs1 || call.m_group == kGroupExtEs1;
    m_context = m_current;
    call.ListEffects(*this);
}

void CEffects::ListReads(const CApiCall& call, std::uint32_t number, SReads& reads) {
    m_at = number;
    m_reads = &reads;
    m_isEs1 = call.m_group == kGroupEs1 || call.m_group == kGroupExtEs1;
    m_context = call.m_group != kGroupEgl ? Value(kProcess, ESlot::kCurrentContext)
                                          : Peek(kProcess, ESlot::kCurrentContext);
    if (m_context == 0) m_context = kNoContext;
    call.ListEffects(*this);
    m_reads = nullptr;
}

std::uint32_t CEffects::MakeObject(EObject kind, std::uint32_t scope, std::uint32_t name) {
    const auto made = static_cast<std::uint32_t>(m_objects.size());
    SObject& object = m_objects.emplace_back();
    object.kind = kind;
    object.name = name;
    object.scope = scope;
    object.born = m_at;
    const std::uint32_t hash = HashOf(kind, scope, name);
    object.previous = LastNamed(kind, scope, name);
    if (object.previous != 0) {
        m_names.Replace(hash, object.previous, made);
    } else {
        m_names.Add(hash, made);
    }
    return made;
}

std::uint32_t CEffects::LastNamed(EObject kind, std::uint32_t scope, std::uint32_t name) const {
    return m_names.Find(HashOf(kind, scope, name), [&](std::uint32_t number) {
        const SObject& object = m_objects[number];
        return object.name == name && object.scope == scope && object.kind == kind;
    });
}

std::uint32_t CEffects::Find(EObject kind, std::uint32_t scope, std::uint32_t name) {
    std::uint32_t object = LastNamed(kind, scope, name);
    if (Resolves()) {
        while (object != 0 && m_objects[object].born > m_at) object = m_objects[object].previous;
        return object;
    }
    if (object == 0 || m_objects[object].died != 0) object = MakeObject(kind, scope, name);
    return object;
}

std::uint32_t CEffects::Scope(EObject kind) {
    switch (kind) {
        case EObject::kDisplay:
        case EObject::kContext:
        case EObject::kSurface:
            return kProcess;
        case EObject::kFramebuffer:
        case EObject::kVertexArray:
        case EObject::kFeedback:
            return m_context;
        default:
            return m_objects[m_context].group;
    }
}

std::uint32_t CEffects::Find(EObject kind, std::uint32_t name) {
    return name != 0 ? Find(kind, Scope(kind), name) : 0;
}

std::uint32_t CEffects::Named(EObject kind, std::uint32_t name) {
    const std::uint32_t object = Find(kind, name);
    if (object != 0 && m_objects[object].born == m_at) {
        Set(object, ESlot::kExistence);
    } else {
        ReadPlace(object, ESlot::kExistence);
    }
    return object;
}

std::uint32_t CEffects::BoundNow(EObject kind, std::uint32_t name) {
    const std::uint32_t object = Named(kind, name);
    if (object != 0 && !Resolves() && !m_objects[object].bound) {
        m_objects[object].bound = true;
        if (m_objects[object].born != m_at) Add(object, ESlot::kExistence, 0, 0);
    }
    return object;
}

std::uint32_t CEffects::Place(std::uint32_t object, ESlot slot, std::uint64_t place, bool make) {
    if (object == 0) return 0;
    std::uint32_t* kept = nullptr;
    if (place == 0 && object == m_context) {
        if (m_keptContext != object) {
            m_keptContext = object;
            m_keptPlaces = {};
        }
        kept = &m_keptPlaces[static_cast<std::size_t>(slot)];
        if (*kept == kNone && !make) return 0;
        if (*kept != 0 && *kept != kNone) return *kept;
    }
    const std::uint32_t hash =
        CFlatIndex::Hash(place, std::uint64_t{object} << 8 | static_cast<std::uint64_t>(slot));
    const std::uint32_t found = m_places.Find(hash, [&](std::uint32_t number) {
        const SJournal& journal = m_journals[number];
        return journal.object == object && journal.slot == slot && journal.place == place;
    });
    if (kept != nullptr) *kept = found != 0 ? found : kNone;
    if (found != 0 || !make) return found;
    const auto made = static_cast<std::uint32_t>(m_journals.size());
    SJournal& journal = m_journals.emplace_back();
    journal.object = object;
    journal.slot = slot;
    journal.place = place;
    m_objects[object].journals.push_back(made);
    m_places.Add(hash, made);
    if (kept != nullptr) *kept = made;
    return made;
}

std::uint32_t CEffects::Peek(const SJournal& journal) const {
    if (!Resolves()) return journal.entries.empty() ? 0 : journal.entries.back().value;
    const std::uint32_t entry = journal.Find(m_at);
    return entry != 0 ? journal.entries[entry - 1].value : 0;
}

std::uint32_t CEffects::Peek(std::uint32_t object, ESlot slot, std::uint64_t place) {
    const std::uint32_t journal = Place(object, slot, place, false);
    return journal != 0 ? Peek(m_journals[journal]) : 0;
}

std::uint32_t CEffects::Value(std::uint32_t object, ESlot slot, std::uint64_t place) {
    const std::uint32_t journal = Place(object, slot, place, false);
    if (journal == 0) return 0;
    Read(journal);
    return Peek(m_journals[journal]);
}

void CEffects::ReadSlot(std::uint32_t object, ESlot slot) {
    if (!Resolves() || object == 0) return;
    for (const std::uint32_t journal : m_objects[object].journals) {
        if (m_journals[journal].slot == slot) Read(journal);
    }
}

SJournal::SEntry& CEffects::Enter(std::uint32_t journal, std::uint32_t call,
                                  std::uint32_t previous) {
    SJournal::SEntry& entry = m_journals[journal].entries.emplace_back();
    entry.since = m_at;
    entry.call = call;
    entry.previous = previous;
    return entry;
}

void CEffects::Set(std::uint32_t object, ESlot slot, std::uint64_t place, std::uint32_t value) {
    if (Resolves() || object == 0) return;
    const std::uint32_t journal = Place(object, slot, place, true);
    Enter(journal, m_at, 0).value = value;
    m_journals[journal].parts = 0;
}

void CEffects::Add(std::uint32_t object, ESlot slot, std::uint64_t place, std::uint32_t value,
                   const SJournal::SArea& area) {
    if (object == 0) return;
    if (Resolves()) return ReadPlace(object, slot, place);
    const std::uint32_t number = Place(object, slot, place, true);
    SJournal& journal = m_journals[number];
    Enter(number, m_at, static_cast<std::uint32_t>(journal.entries.size())).value = value;
    if (area.width == 0) return;
    journal.areas.resize(journal.entries.size() - 1);
    journal.areas.push_back(area);
    if (++journal.parts > 16) LeaveOutCovered(journal);
}

void CEffects::LeaveOutCovered(SJournal& journal) {
    // From the newest on, up to what isn't the part of an image.
    std::vector<std::uint32_t> kept;
    auto entry = static_cast<std::uint32_t>(journal.entries.size());
    const auto area = [&](std::uint32_t number) {
        return number <= journal.areas.size() ? journal.areas[number - 1] : SJournal::SArea{};
    };
    for (; entry != 0 && area(entry).width != 0; entry = journal.entries[entry - 1].previous) {
        const bool covered = std::any_of(kept.begin(), kept.end(), [&](std::uint32_t newer) {
            return area(newer).Covers(area(entry));
        });
        if (!covered) kept.push_back(entry);
    }
    std::uint32_t previous = entry;
    std::reverse(kept.begin(), kept.end());
    for (const std::uint32_t number : kept) {
        SJournal::SEntry copy = journal.entries[number - 1];
        copy.since = m_at;
        copy.previous = previous;
        const SJournal::SArea part = area(number);
        journal.entries.push_back(copy);
        journal.areas.resize(journal.entries.size() - 1);
        journal.areas.push_back(part);
        previous = static_cast<std::uint32_t>(journal.entries.size());
    }
    // As much again has to come before the next look at them.
    const std::int64_t more = static_cast<std::int64_t>(kept.size());
    journal.parts = static_cast<std::uint32_t>(std::max<std::int64_t>(0, 16 - more));
}

void CEffects::Cut(std::uint32_t journal) {
    if (!Resolves() && journal != 0 && !m_journals[journal].entries.empty()) Enter(journal, 0, 0);
}

void CEffects::CutSlot(std::uint32_t object, ESlot slot) {
    if (Resolves() || object == 0) return;
    for (const std::uint32_t journal : m_objects[object].journals) {
        if (m_journals[journal].slot == slot) Cut(journal);
    }
}

}  // namespace kestrail
