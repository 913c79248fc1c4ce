#include "slicing/effects.h"

#include <algorithm>
#include <utility>

namespace kestrail {
namespace {

constexpr std::uint32_t kProcess = 1;
constexpr std::uint32_t kNoContext = 2;  ///< stands for the context where none is current
constexpr std::uint32_t kTargets = 4;
constexpr std::uint64_t kAllLevels = ~std::uint64_t{0};
constexpr std::uint32_t kNone = ~std::uint32_t{0};  ///< of a journal: there isn't one yet
constexpr std::uint64_t kKept = 1;  ///< of kStorage, for a surface that swaps leave alone
constexpr std::int32_t kMostLevels = 16;

std::uint64_t ImagePlace(std::int32_t level, std::int32_t layer) {
    return std::uint64_t{static_cast<std::uint32_t>(level)} << 32 |
           std::uint64_t{static_cast<std::uint32_t>(layer)} << 4;
}
std::int32_t LevelOf(std::uint64_t place) {
    return static_cast<std::int32_t>(place >> 32);
}

/// From 1; 0 for a target that has none.
std::int32_t FaceOf(std::uint32_t target) {
    const bool face =
        target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z;
    return face ? static_cast<std::int32_t>(target - GL_TEXTURE_CUBE_MAP_POSITIVE_X) + 1 : 0;
}

std::uint32_t KindOfTarget(std::uint32_t target) {
    switch (target) {
        case GL_TEXTURE_3D:
            return 2;
        case GL_TEXTURE_2D_ARRAY:
            return 3;
        default:
            return target == GL_TEXTURE_CUBE_MAP || FaceOf(target) != 0 ? 1 : 0;
    }
}

/// A size as a value of a place; 0 for one that isn't known.
std::uint32_t Packed(std::int32_t width, std::int32_t height) {
    const bool fits = width > 0 && height > 0 && width < 0x10000 && height < 0x10000;
    return fits ? static_cast<std::uint32_t>(width) << 16 | static_cast<std::uint32_t>(height) : 0;
}

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

void CEffects::Display(std::uint32_t display) {
    Named(EObject::kDisplay, display);
}

void CEffects::InitializeDisplay(std::uint32_t display) {
    Add(Named(EObject::kDisplay, display), ESlot::kExistence, 0, 0);
}

void CEffects::BindApi() {
    Set(kProcess, ESlot::kBoundApi);
}

void CEffects::CreateContext(std::uint32_t display, std::uint32_t share, std::uint32_t context) {
    Named(EObject::kDisplay, display);
    ReadPlace(kProcess, ESlot::kBoundApi);
    const std::uint32_t other = share != 0 ? Named(EObject::kContext, share) : 0;
    Create(EObject::kContext, context);
    const std::uint32_t made = Find(EObject::kContext, context);
    if (!Resolves() && made != 0)
        m_objects[made].group = other != 0 ? m_objects[other].group : made;
}

void CEffects::CreateSurface(std::uint32_t display, std::uint32_t surface) {
    Named(EObject::kDisplay, display);
    Create(EObject::kSurface, surface);
}

void CEffects::KeepSurface(std::uint32_t surface) {
    Set(Find(EObject::kSurface, surface), ESlot::kStorage, kKept, 1);
}

void CEffects::SizeSurface(std::uint32_t surface, std::int32_t width, std::int32_t height) {
    Set(Find(EObject::kSurface, surface), ESlot::kStorage, 0, Packed(width, height));
}

void CEffects::MakeCurrent(std::uint32_t context, std::uint32_t draw, std::uint32_t read) {
    const std::uint32_t current = context != 0 ? Named(EObject::kContext, context) : kNoContext;
    const std::uint32_t drawn = Named(EObject::kSurface, draw);
    const std::uint32_t other = draw != read ? Named(EObject::kSurface, read) : drawn;
    Set(kProcess, ESlot::kCurrentContext, 0, current);
    Set(current, ESlot::kDrawSurface, 0, drawn);
    Set(current, ESlot::kReadSurface, 0, other);
    if (!Resolves()) m_current = current;
}

void CEffects::SurfaceAttribute(std::uint32_t surface, std::uint32_t attribute,
                                std::uint32_t value) {
    Set(Named(EObject::kSurface, surface), ESlot::kAttribute, attribute, value);
}

void CEffects::AgeSurface(std::uint32_t surface, std::uint32_t attribute) {
    if (attribute != EGL_BUFFER_AGE_EXT) return;
    Set(Named(EObject::kSurface, surface), ESlot::kAttribute, attribute, 1);
}

void CEffects::SwapBuffers(std::uint32_t surface) {
    const std::uint32_t shown = Named(EObject::kSurface, surface);
    ReadSlot(shown, ESlot::kAttribute);
    ReadPlace(shown, ESlot::kContent, 0);
    if (Peek(shown, ESlot::kStorage, kKept) != 0) return;
    // Without a promise, what the window holds from then on is nothing to build on. Those who ask
    // how old it is do.
    const bool kept = Peek(shown, ESlot::kAttribute, EGL_SWAP_BEHAVIOR) == EGL_BUFFER_PRESERVED ||
                      Peek(shown, ESlot::kAttribute, EGL_BUFFER_AGE_EXT) != 0;
    for (std::uint64_t aspect = kept ? 1 : 0; aspect < 3; ++aspect) {
        Cut(Place(shown, ESlot::kContent, aspect, false));
    }
}

void CEffects::CurrentContext() {
    ReadPlace(kProcess, ESlot::kCurrentContext);
}

void CEffects::BindSurface(std::uint32_t surface) {
    CurrentContext();
    const std::uint32_t bound = Named(EObject::kSurface, surface);
    ReadPlace(bound, ESlot::kContent, 0);
    const std::uint32_t texture = BoundTexture(GL_TEXTURE_2D);
    Set(texture, ESlot::kStorage, ImagePlace(0, 0), Peek(bound, ESlot::kStorage));
    Set(texture, ESlot::kContent, ImagePlace(0, 0));
}

void CEffects::Create(EObject kind, std::uint32_t name) {
    if (Resolves() || name == 0) return;
    const std::uint32_t scope = Scope(kind);
    Set(MakeObject(kind, scope, name), ESlot::kExistence);
    Add(scope, ESlot::kNames, static_cast<std::uint64_t>(kind), 0);
}

void CEffects::PassedName(EObject kind) {
    ReadPlace(Scope(kind), ESlot::kNames, static_cast<std::uint64_t>(kind));
}

void CEffects::Generate(EObject kind, const Names& names) {
    for (std::uint32_t i = 0; i < names.ItemCount(); ++i) Create(kind, names.GetItem(i));
}

void CEffects::Delete(EObject kind, const Names& names) {
    for (std::uint32_t i = 0; i < names.ItemCount(); ++i) Delete(kind, names.GetItem(i));
}

void CEffects::Delete(EObject kind, std::uint32_t name) {
    if (name == 0) return;
    if (LastNamed(kind, Scope(kind), name) == 0) return;
    const std::uint32_t object = Find(kind, name);
    if (object == 0) return;
    Unbind(kind, object);
    if (Resolves()) return;
    Add(Scope(kind), ESlot::kNames, static_cast<std::uint64_t>(kind), 0);
    m_objects[object].died = m_at;
    m_endings.emplace(m_objects[object].born, m_at);
}

void CEffects::Rebind(std::uint32_t object, ESlot slot, std::uint64_t place, std::uint32_t gone) {
    if (Peek(object, slot, place) == gone) Add(object, slot, place, 0);
}

void CEffects::Unbind(EObject kind, std::uint32_t object) {
    switch (kind) {
        case EObject::kTexture:
            for (std::uint64_t place = 0; place < std::uint64_t{m_units} * kTargets; ++place) {
                Rebind(m_context, ESlot::kBoundTexture, place, object);
            }
            break;
        case EObject::kSampler:
            for (std::uint64_t unit = 0; unit < m_units; ++unit) {
                Rebind(m_context, ESlot::kBoundSampler, unit, object);
            }
            break;
        case EObject::kBuffer:
            for (const GLenum target :
                 {GL_ARRAY_BUFFER, GL_UNIFORM_BUFFER, GL_PIXEL_PACK_BUFFER, GL_PIXEL_UNPACK_BUFFER,
                  GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, GL_TRANSFORM_FEEDBACK_BUFFER}) {
                Rebind(m_context, ESlot::kBoundBuffer, target, object);
            }
            Rebind(VertexArray(), ESlot::kElements, 0, object);
            break;
        case EObject::kRenderbuffer:
            Rebind(m_context, ESlot::kBoundRenderbuffer, 0, object);
            break;
        case EObject::kFramebuffer:
            Rebind(m_context, ESlot::kBoundDrawFramebuffer, 0, object);
            Rebind(m_context, ESlot::kBoundReadFramebuffer, 0, object);
            break;
        case EObject::kVertexArray:
            Rebind(m_context, ESlot::kBoundVertexArray, 0, object);
            break;
        default:
            break;
    }
}

void CEffects::Use(EObject kind, std::uint32_t name) {
    Named(kind, name);
}

void CEffects::ActiveTexture(std::uint32_t texture) {
    const std::uint32_t unit = texture - GL_TEXTURE0;
    if (unit < 0x100) m_units = std::max(m_units, unit + 1);
    Set(m_context, ESlot::kActiveTexture, 0, unit);
}

void CEffects::ClientTexture(std::uint32_t texture) {
    Set(m_context, ESlot::kClientTexture, 0, texture - GL_TEXTURE0);
}

void CEffects::BindTexture(std::uint32_t target, std::uint32_t name) {
    const std::uint32_t unit = Value(m_context, ESlot::kActiveTexture);
    Bind(ESlot::kBoundTexture, unit * kTargets + KindOfTarget(target), EObject::kTexture, name);
}

std::uint32_t CEffects::BoundTexture(std::uint32_t target) {
    const std::uint32_t unit = Value(m_context, ESlot::kActiveTexture);
    const std::uint32_t kind = KindOfTarget(target);
    const std::uint32_t bound = Value(m_context, ESlot::kBoundTexture, unit * kTargets + kind);
    return bound != 0 ? bound : Find(EObject::kTexture, m_context, 0x80000000u + kind);
}

void CEffects::Bind(ESlot slot, std::uint64_t place, EObject kind, std::uint32_t name) {
    Set(m_context, slot, place, BoundNow(kind, name));
    if (slot == ESlot::kBoundSampler && place < 0x100) {
        m_units = std::max(m_units, static_cast<std::uint32_t>(place) + 1);
    }
}

std::uint32_t CEffects::VertexArray() {
    const std::uint32_t bound = Value(m_context, ESlot::kBoundVertexArray);
    return bound != 0 ? bound : Find(EObject::kVertexArray, m_context, 0);
}

void CEffects::BindBuffer(std::uint32_t target, std::uint32_t name) {
    const std::uint32_t buffer = BoundNow(EObject::kBuffer, name);
    if (target == GL_ELEMENT_ARRAY_BUFFER) {
        Set(VertexArray(), ESlot::kElements, 0, buffer);
    } else {
        Set(m_context, ESlot::kBoundBuffer, target, buffer);
    }
}

void CEffects::BindIndexedBuffer(std::uint32_t target, std::uint32_t index, std::uint32_t name) {
    const std::uint32_t buffer = BoundNow(EObject::kBuffer, name);
    Set(m_context, ESlot::kIndexedBuffer, std::uint64_t{target} << 32 | index, buffer);
    Set(m_context, ESlot::kBoundBuffer, target, buffer);
}

std::uint32_t CEffects::BoundBuffer(std::uint32_t target) {
    return target == GL_ELEMENT_ARRAY_BUFFER ? Value(VertexArray(), ESlot::kElements)
                                             : Value(m_context, ESlot::kBoundBuffer, target);
}

void CEffects::BindFramebuffer(std::uint32_t target, std::uint32_t name) {
    const std::uint32_t framebuffer = BoundNow(EObject::kFramebuffer, name);
    if (target != GL_READ_FRAMEBUFFER) {
        Set(m_context, ESlot::kBoundDrawFramebuffer, 0, framebuffer);
    }
    if (target != GL_DRAW_FRAMEBUFFER) {
        Set(m_context, ESlot::kBoundReadFramebuffer, 0, framebuffer);
    }
}

std::uint32_t CEffects::Framebuffer(bool read) {
    return Value(m_context, read ? ESlot::kBoundReadFramebuffer : ESlot::kBoundDrawFramebuffer);
}

std::uint32_t CEffects::BoundFramebuffer(std::uint32_t target) {
    return Framebuffer(target == GL_READ_FRAMEBUFFER);
}

void CEffects::TextureParameter(std::uint32_t target, std::uint32_t pname) {
    Set(BoundTexture(target), ESlot::kAttribute, pname);
}

void CEffects::SamplerParameter(std::uint32_t sampler, std::uint32_t pname) {
    Set(Named(EObject::kSampler, sampler), ESlot::kAttribute, pname);
}

void CEffects::ReadUnpacking() {
    if (!Resolves()) return;
    ReadSlot(m_context, ESlot::kPixelStore);
    ReadWhole(Value(m_context, ESlot::kBoundBuffer, GL_PIXEL_UNPACK_BUFFER));
}

void CEffects::TextureImage(std::uint32_t target, std::int32_t level, std::int32_t width,
                            std::int32_t height, std::int32_t depth) {
    const std::uint32_t texture = BoundTexture(target);
    ReadUnpacking();
    const std::int32_t face = FaceOf(target);
    const std::uint64_t place = ImagePlace(level, face);
    if (!Resolves()) {
        for (const std::uint32_t number : m_objects[texture].journals) {
            const SJournal& journal = m_journals[number];
            if (journal.slot != ESlot::kContent || LevelOf(journal.place) != level) continue;
            if (face == 0 || (journal.place & ~std::uint64_t{15}) == place) Cut(number);
        }
    }
    Set(texture, ESlot::kStorage, place, depth == 1 ? Packed(width, height) : 0);
    Set(texture, ESlot::kContent, place);
}

void CEffects::TexturePart(std::uint32_t target, std::int32_t level, std::int32_t x, std::int32_t y,
                           std::int32_t width, std::int32_t height) {
    const std::uint32_t texture = BoundTexture(target);
    ReadUnpacking();
    const std::uint64_t place = ImagePlace(level, FaceOf(target));
    std::uint32_t size = Value(texture, ESlot::kStorage, place);
    if (const std::uint32_t whole = Value(texture, ESlot::kStorage, kAllLevels)) {
        size = Packed(std::max(1, static_cast<std::int32_t>(whole >> 16) >> level),
                      std::max(1, static_cast<std::int32_t>(whole & 0xFFFF) >> level));
    }
    if (x == 0 && y == 0 && size != 0 && size == Packed(width, height)) {
        Set(texture, ESlot::kContent, place);
    } else {
        Add(texture, ESlot::kContent, place, 0, {x, y, width, height});
    }
}

void CEffects::TextureLayers(std::uint32_t target, std::int32_t level, std::int32_t x,
                             std::int32_t y, std::int32_t z, std::int32_t width,
                             std::int32_t height, std::int32_t depth) {
    const std::uint32_t texture = BoundTexture(target);
    ReadUnpacking();
    ReadSlot(texture, ESlot::kStorage);
    if (depth == 1) {
        Add(texture, ESlot::kContent, ImagePlace(level, z + 1), 0, {x, y, width, height});
    } else {
        Add(texture, ESlot::kContent, ImagePlace(level, 0), 0);
    }
}

void CEffects::TextureStorage(std::uint32_t target, std::int32_t width, std::int32_t height) {
    const std::uint32_t texture = BoundTexture(target);
    CutSlot(texture, ESlot::kContent);
    CutSlot(texture, ESlot::kStorage);
    Set(texture, ESlot::kStorage, kAllLevels, Packed(width, height));
}

void CEffects::Mipmaps(std::uint32_t target) {
    const std::uint32_t texture = BoundTexture(target);
    ReadSlot(texture, ESlot::kStorage);
    ReadSlot(texture, ESlot::kAttribute);
    // Drivers may hold back what was drawn into it until another framebuffer is bound.
    Framebuffer(false);
    Framebuffer(true);
    if (Resolves()) {
        // Whichever level it is made from.
        for (const std::uint32_t journal : m_objects[texture].journals) {
            if (m_journals[journal].slot == ESlot::kContent) Read(journal);
        }
        return;
    }
    const bool immutable = Peek(texture, ESlot::kStorage, kAllLevels) != 0;
    for (std::int32_t level = 1; level < kMostLevels; ++level) {
        for (const std::uint32_t journal : m_objects[texture].journals) {
            const SJournal& known = m_journals[journal];
            if (known.slot == ESlot::kContent && LevelOf(known.place) == level) Cut(journal);
        }
        if (!immutable) Set(texture, ESlot::kStorage, ImagePlace(level, 0));
        Set(texture, ESlot::kContent, ImagePlace(level, 0));
    }
}

void CEffects::RenderbufferStorage(std::int32_t width, std::int32_t height) {
    const std::uint32_t bound = Value(m_context, ESlot::kBoundRenderbuffer);
    CutSlot(bound, ESlot::kContent);
    Set(bound, ESlot::kStorage, 0, Packed(width, height));
}

void CEffects::Attach(std::uint32_t target, std::uint32_t attachment, const SAttached& attached) {
    const std::uint32_t framebuffer = BoundFramebuffer(target);
    if (Resolves() || framebuffer == 0) return;
    std::uint32_t value = 0;
    if (attached.object != 0) {
        m_attached.push_back(attached);
        value = static_cast<std::uint32_t>(m_attached.size());
    }
    const auto set = [&](std::uint32_t place) {
        Set(framebuffer, ESlot::kAttachment, place, value);
    };
    const bool both = attachment == GL_DEPTH_STENCIL_ATTACHMENT;
    if (both || attachment == GL_DEPTH_ATTACHMENT) set(kDepthAttachment);
    if (both || attachment == GL_STENCIL_ATTACHMENT) set(kStencilAttachment);
    const std::uint32_t color = attachment - GL_COLOR_ATTACHMENT0;
    if (color < 32) set(color);
}

void CEffects::AttachTexture(std::uint32_t target, std::uint32_t attachment, std::uint32_t texture,
                             std::int32_t level, std::uint32_t face) {
    Attach(target, attachment, {Named(EObject::kTexture, texture), level, FaceOf(face), true});
}

void CEffects::AttachLayer(std::uint32_t target, std::uint32_t attachment, std::uint32_t texture,
                           std::int32_t level, std::int32_t layer) {
    Attach(target, attachment, {Named(EObject::kTexture, texture), level, layer + 1, true});
}

void CEffects::AttachRenderbuffer(std::uint32_t target, std::uint32_t attachment,
                                  std::uint32_t name) {
    Attach(target, attachment, {Named(EObject::kRenderbuffer, name), 0, 0, false});
}

void CEffects::DrawBuffers(const Enums& buffers) {
    std::uint32_t colors = 0x80000000u;
    for (std::uint32_t i = 0; i < buffers.ItemCount(); ++i) {
        const std::uint32_t color = buffers.GetItem(i) - GL_COLOR_ATTACHMENT0;
        if (color < 31) colors |= 1u << color;
        if (buffers.GetItem(i) == GL_BACK) colors |= 1;
    }
    const std::uint32_t framebuffer = Framebuffer(false);
    Set(framebuffer != 0 ? framebuffer : m_context, ESlot::kDrawBuffers, 0, colors);
}

void CEffects::ReadBuffer(std::uint32_t source) {
    const std::uint32_t framebuffer = Framebuffer(true);
    const std::uint32_t color = source - GL_COLOR_ATTACHMENT0;
    Set(framebuffer != 0 ? framebuffer : m_context, ESlot::kReadBuffer, 0, color < 31 ? color : 0);
}

void CEffects::ReadFramebuffer(std::uint32_t framebuffer) {
    if (!Resolves()) return;
    ReadWhole(framebuffer);
    for (const std::uint32_t number : m_objects[framebuffer].journals) {
        const SJournal& journal = m_journals[number];
        const std::uint32_t value = journal.slot == ESlot::kAttachment ? Peek(journal) : 0;
        if (value == 0) continue;
        ReadPlace(m_attached[value - 1].object, ESlot::kExistence);
        ReadSlot(m_attached[value - 1].object, ESlot::kStorage);
    }
}

template <typename Visit>
void CEffects::VisitTargets(bool read, std::uint32_t aspects, std::uint32_t colors, Visit visit) {
    const std::uint32_t framebuffer = Framebuffer(read);
    if (framebuffer == 0) {
        const std::uint32_t surface =
            Value(m_context, read ? ESlot::kReadSurface : ESlot::kDrawSurface);
        if (surface == 0) return;
        ReadSlot(surface, ESlot::kAttribute);
        const std::uint32_t size = Peek(surface, ESlot::kStorage);
        for (std::uint32_t aspect = 0; aspect < 3; ++aspect) {
            if ((aspects >> aspect & 1) == 0 || (aspect == 0 && colors == 0)) continue;
            visit(STarget{surface, aspect, static_cast<std::int32_t>(size >> 16),
                          static_cast<std::int32_t>(size & 0xFFFF)},
                  1u << aspect);
        }
        return;
    }
    ReadFramebuffer(framebuffer);
    const auto attached = [&](std::uint32_t place, std::uint32_t aspect) {
        const std::uint32_t value = Peek(framebuffer, ESlot::kAttachment, place);
        if (value == 0) return;
        const SAttached& found = m_attached[value - 1];
        STarget target;
        target.object = found.object;
        target.place = (found.texture ? ImagePlace(found.level, found.layer) : 0) | aspect;
        std::uint32_t size = Peek(found.object, ESlot::kStorage,
                                  found.texture ? ImagePlace(found.level, found.layer) : 0);
        if (const std::uint32_t whole = Peek(found.object, ESlot::kStorage, kAllLevels)) {
            size = Packed(std::max(1, static_cast<std::int32_t>(whole >> 16) >> found.level),
                          std::max(1, static_cast<std::int32_t>(whole & 0xFFFF) >> found.level));
        }
        target.width = static_cast<std::int32_t>(size >> 16);
        target.height = static_cast<std::int32_t>(size & 0xFFFF);
        visit(target, 1u << aspect);
    };
    for (std::uint32_t color = 0; (aspects & kColorAspect) != 0 && color < 31; ++color) {
        if (colors >> color == 0) break;
        if ((colors >> color & 1) != 0) attached(color, 0);
    }
    if ((aspects & kDepthAspect) != 0) attached(kDepthAttachment, 1);
    if ((aspects & kStencilAspect) != 0) attached(kStencilAttachment, 2);
}

std::uint32_t CEffects::DrawnColors() {
    const std::uint32_t framebuffer = Framebuffer(false);
    const std::uint32_t colors =
        Value(framebuffer != 0 ? framebuffer : m_context, ESlot::kDrawBuffers);
    return colors != 0 ? colors & 0x7FFFFFFF : 1;
}

void CEffects::ReadAttached(std::uint32_t aspects, std::uint32_t colors) {
    if (!Resolves()) return;
    VisitTargets(true, aspects, colors, [&](const STarget& target, std::uint32_t) {
        ReadPlace(target.object, ESlot::kContent, target.place);
        // What was sent to all layers, and to an image that is color and depth at once.
        ReadPlace(target.object, ESlot::kContent, target.place >> 32 << 32);
        ReadPlace(target.object, ESlot::kContent, target.place & ~std::uint64_t{15});
    });
}

void CEffects::Discard(std::uint32_t target, const Enums& attachments) {
    if (Resolves()) return;
    for (std::uint32_t i = 0; i < attachments.ItemCount(); ++i) {
        const std::uint32_t attachment = attachments.GetItem(i);
        const std::uint32_t color = attachment - GL_COLOR_ATTACHMENT0;
        std::uint32_t aspects = kColorAspect;
        if (attachment == GL_DEPTH || attachment == GL_DEPTH_ATTACHMENT) aspects = kDepthAspect;
        if (attachment == GL_STENCIL || attachment == GL_STENCIL_ATTACHMENT) {
            aspects = kStencilAspect;
        }
        if (attachment == GL_DEPTH_STENCIL_ATTACHMENT) aspects = kDepthAspect | kStencilAspect;
        VisitTargets(target == GL_READ_FRAMEBUFFER, aspects,
                     color < 31 ? 1u << color : std::uint32_t{attachment == GL_COLOR},
                     [&](const STarget& gone, std::uint32_t) {
                         Cut(Place(gone.object, ESlot::kContent, gone.place, false));
                     });
    }
}

void CEffects::BufferData(std::uint32_t target, std::int32_t size) {
    const std::uint32_t buffer = BoundBuffer(target);
    Set(buffer, ESlot::kStorage, 0, static_cast<std::uint32_t>(size));
    Set(buffer, ESlot::kContent);
}

void CEffects::BufferPart(std::uint32_t target, std::int32_t offset, std::int32_t size) {
    const std::uint32_t buffer = BoundBuffer(target);
    const std::uint32_t whole = Value(buffer, ESlot::kStorage);
    if (offset == 0 && whole != 0 && static_cast<std::uint32_t>(size) == whole) {
        Set(buffer, ESlot::kContent);
    } else {
        Add(buffer, ESlot::kContent, 0, 0, {offset, 0, size, 1});
    }
}

void CEffects::ReadBufferOf(std::uint32_t target) {
    ReadWhole(BoundBuffer(target));
}

void CEffects::MapBuffer(std::uint32_t target) {
    const std::uint32_t buffer = BoundBuffer(target);
    ReadPlace(buffer, ESlot::kStorage);
    Set(buffer, ESlot::kMapping);
}

void CEffects::EndMapping(std::uint32_t target) {
    const std::uint32_t buffer = BoundBuffer(target);
    ReadPlace(buffer, ESlot::kMapping);
    // Who maps unmaps.
    const std::uint32_t mapping = Resolves() ? 0 : Place(buffer, ESlot::kMapping, 0, false);
    if (mapping != 0) m_endings.emplace(m_journals[mapping].entries.back().call, m_at);
    Set(buffer, ESlot::kMapping);
}

void CEffects::UnmapBuffer(std::uint32_t target, std::uint32_t size) {
    const std::uint32_t buffer = BoundBuffer(target);
    const std::uint32_t whole = Value(buffer, ESlot::kStorage);
    EndMapping(target);
    if (whole != 0 && size == whole) {
        Set(buffer, ESlot::kContent);
    } else {
        Add(buffer, ESlot::kContent, 0, 0);
    }
}

void CEffects::Feedback(bool begins, bool active) {
    if (begins) {
        Set(m_context, ESlot::kFeedback, 0, 1);
    } else {
        Add(m_context, ESlot::kFeedback, 0, active ? 1 : 0);
    }
}

void CEffects::AttributePointer(std::uint32_t index) {
    ReadSlot(Value(m_context, ESlot::kProgramInUse), ESlot::kAttributeLocation);
    Set(VertexArray(), ESlot::kArray, index,
        Value(m_context, ESlot::kBoundBuffer, GL_ARRAY_BUFFER));
}

void CEffects::EnableArray(std::uint32_t index, bool on) {
    ReadSlot(Value(m_context, ESlot::kProgramInUse), ESlot::kAttributeLocation);
    Set(VertexArray(), ESlot::kArrayEnabled, index, on ? 1 : 0);
}

void CEffects::AttributeDivisor(std::uint32_t index) {
    Set(VertexArray(), ESlot::kArrayDivisor, index);
}

void CEffects::ClientArray(std::uint32_t array) {
    std::uint64_t place = array;
    if (array == GL_TEXTURE_COORD_ARRAY) {
        place |= std::uint64_t{Value(m_context, ESlot::kClientTexture)} << 32;
    }
    Set(VertexArray(), ESlot::kArray, place,
        Value(m_context, ESlot::kBoundBuffer, GL_ARRAY_BUFFER));
}

void CEffects::EnableClientArray(std::uint32_t array, bool on) {
    std::uint64_t place = array;
    if (array == GL_TEXTURE_COORD_ARRAY) {
        place |= std::uint64_t{Value(m_context, ESlot::kClientTexture)} << 32;
    }
    Set(VertexArray(), ESlot::kArrayEnabled, place, on ? 1 : 0);
}

void CEffects::ReadArrays() {
    const std::uint32_t array = VertexArray();
    ReadWhole(array);
    if (array == 0) return;
    for (const std::uint32_t number : m_objects[array].journals) {
        const SJournal& journal = m_journals[number];
        const std::uint32_t buffer = Peek(journal);
        if (journal.slot == ESlot::kElements) ReadWhole(buffer);
        if (journal.slot != ESlot::kArray || buffer == 0) continue;
        if (Peek(array, ESlot::kArrayEnabled, journal.place) != 0) ReadWhole(buffer);
    }
}

bool CEffects::ScissorLetsThrough(const STarget& target) {
    if (Value(m_context, ESlot::kCapability, GL_SCISSOR_TEST) == 0) return true;
    const std::uint32_t box = Value(m_context, ESlot::kScissor);
    return box != 0 && m_scissors[box - 1].Covers({0, 0, target.width, target.height});
}

void CEffects::WriteTargets(std::uint32_t aspects, std::uint32_t colors, std::uint32_t whole) {
    VisitTargets(false, aspects, colors, [&](const STarget& target, std::uint32_t aspect) {
        if ((whole & aspect) != 0 && ScissorLetsThrough(target)) {
            Set(target.object, ESlot::kContent, target.place);
            return;
        }
        Add(target.object, ESlot::kContent, target.place, 0);
        ReadPlace(target.object, ESlot::kContent, target.place >> 32 << 32);
        ReadPlace(target.object, ESlot::kContent, target.place & ~std::uint64_t{15});
    });
}

void CEffects::Draw() {
    if (Resolves()) {
        ReadWhole(m_context);
        ReadArrays();
        const std::uint32_t program = m_isEs1 ? 0 : Value(m_context, ESlot::kProgramInUse);
        ReadWhole(program);
        ReadSampled(program);
        for (const std::uint32_t number : m_objects[m_context].journals) {
            const SJournal& journal = m_journals[number];
            if (journal.slot == ESlot::kIndexedBuffer) ReadWhole(Peek(journal));
        }
    }
    const auto on = [&](std::uint32_t capability) {
        return Value(m_context, ESlot::kCapability, capability) != 0;
    };
    std::uint32_t aspects = 0;
    if (Value(m_context, ESlot::kColorMask) != 2) aspects |= kColorAspect;
    if (on(GL_DEPTH_TEST)) aspects |= kDepthAspect;
    if (on(GL_STENCIL_TEST)) aspects |= kStencilAspect;
    WriteTargets(aspects, DrawnColors(), 0);
    if (Value(m_context, ESlot::kFeedback) == 0) return;
    for (const std::uint32_t number : m_objects[m_context].journals) {
        const SJournal& journal = m_journals[number];
        if (journal.slot != ESlot::kIndexedBuffer ||
            journal.place >> 32 != GL_TRANSFORM_FEEDBACK_BUFFER) {
            continue;
        }
        Add(Peek(journal), ESlot::kContent, 0, 0);
    }
}

void CEffects::Clear(std::uint32_t mask) {
    if (Resolves()) ReadWhole(m_context);
    std::uint32_t aspects = 0;
    std::uint32_t whole = 0;
    const auto add = [&](std::uint32_t bit, EAspect aspect, std::uint32_t masked) {
        if ((mask & bit) == 0 || masked == 2) return;
        aspects |= aspect;
        if (masked == 0) whole |= aspect;
    };
    add(GL_COLOR_BUFFER_BIT, kColorAspect, Value(m_context, ESlot::kColorMask));
    add(GL_DEPTH_BUFFER_BIT, kDepthAspect, Value(m_context, ESlot::kDepthMask));
    add(GL_STENCIL_BUFFER_BIT, kStencilAspect, Value(m_context, ESlot::kStencilMask, GL_FRONT));
    WriteTargets(aspects, DrawnColors(), whole);
}

void CEffects::ClearBuffer(std::uint32_t buffer, std::int32_t drawBuffer) {
    if (Resolves()) ReadWhole(m_context);
    std::uint32_t aspects = kColorAspect;
    if (buffer == GL_DEPTH) aspects = kDepthAspect;
    if (buffer == GL_STENCIL) aspects = kStencilAspect;
    if (buffer == GL_DEPTH_STENCIL) aspects = kDepthAspect | kStencilAspect;
    std::uint32_t whole = 0;
    if (Value(m_context, ESlot::kColorMask) == 0) whole |= kColorAspect;
    if (Value(m_context, ESlot::kDepthMask) == 0) whole |= kDepthAspect;
    if (Value(m_context, ESlot::kStencilMask, GL_FRONT) == 0) whole |= kStencilAspect;
    const bool known = drawBuffer >= 0 && drawBuffer < 31;
    WriteTargets(aspects, known ? 1u << drawBuffer : 0, whole);
}

void CEffects::Blit(std::uint32_t mask, std::int32_t x0, std::int32_t y0, std::int32_t x1,
                    std::int32_t y1) {
    if (Resolves()) ReadWhole(m_context);
    std::uint32_t aspects = 0;
    if ((mask & GL_COLOR_BUFFER_BIT) != 0) aspects |= kColorAspect;
    if ((mask & GL_DEPTH_BUFFER_BIT) != 0) aspects |= kDepthAspect;
    if ((mask & GL_STENCIL_BUFFER_BIT) != 0) aspects |= kStencilAspect;
    const std::uint32_t source = Framebuffer(true);
    ReadAttached(aspects, 1u << Value(source != 0 ? source : m_context, ESlot::kReadBuffer));
    const SJournal::SArea area = {std::min(x0, x1), std::min(y0, y1), std::abs(x1 - x0),
                                  std::abs(y1 - y0)};
    VisitTargets(false, aspects, DrawnColors(), [&](const STarget& target, std::uint32_t) {
        if (ScissorLetsThrough(target) && area.Covers({0, 0, target.width, target.height})) {
            Set(target.object, ESlot::kContent, target.place);
        } else {
            Add(target.object, ESlot::kContent, target.place, 0);
        }
    });
}

void CEffects::ReadPixels() {
    const std::uint32_t source = Framebuffer(true);
    ReadAttached(kColorAspect | kDepthAspect | kStencilAspect,
                 1u << Value(source != 0 ? source : m_context, ESlot::kReadBuffer));
}

void CEffects::PackPixels() {
    const std::uint32_t buffer = Value(m_context, ESlot::kBoundBuffer, GL_PIXEL_PACK_BUFFER);
    if (buffer == 0) return;
    ReadSlot(m_context, ESlot::kPixelStore);
    ReadPixels();
    Add(buffer, ESlot::kContent, 0, 0);
}

std::uint64_t CEffects::MatrixPlace() {
    const std::uint32_t mode = Value(m_context, ESlot::kMatrixMode);
    std::uint32_t which = 0;
    if (mode == GL_TEXTURE) which = Value(m_context, ESlot::kActiveTexture);
    if (mode == GL_MATRIX_PALETTE_OES) which = Value(m_context, ESlot::kPalette);
    return std::uint64_t{which} << 32 | (mode != 0 ? mode : GL_MODELVIEW);
}

void CEffects::MatrixMode(std::uint32_t mode) {
    Set(m_context, ESlot::kMatrixMode, 0, mode);
}

void CEffects::PaletteMatrix(std::uint32_t matrix) {
    Set(m_context, ESlot::kPalette, 0, matrix);
}

void CEffects::LoadPalette() {
    ReadMatrix();
    const std::uint64_t palette = Value(m_context, ESlot::kPalette);
    Set(m_context, ESlot::kMatrix, palette << 32 | GL_MATRIX_PALETTE_OES);
}

void CEffects::ReadMatrix() {
    ReadPlace(m_context, ESlot::kMatrix, GL_MODELVIEW);
}

void CEffects::LoadMatrix() {
    const std::uint64_t place = MatrixPlace();
    if (Resolves()) return;
    const std::uint32_t journal = Place(m_context, ESlot::kMatrix, place, true);
    const auto& pushed = m_pushed[journal];
    Enter(journal, m_at, pushed.empty() ? 0 : pushed.back());
}

void CEffects::ChangeMatrix() {
    Add(m_context, ESlot::kMatrix, MatrixPlace(), 0);
}

void CEffects::PushMatrix() {
    const std::uint64_t place = MatrixPlace();
    Add(m_context, ESlot::kMatrix, place, 0);
    if (Resolves()) return;
    const std::uint32_t journal = Place(m_context, ESlot::kMatrix, place, true);
    m_pushed[journal].push_back(static_cast<std::uint32_t>(m_journals[journal].entries.size()));
}

void CEffects::PopMatrix() {
    const std::uint64_t place = MatrixPlace();
    if (Resolves()) return ReadPlace(m_context, ESlot::kMatrix, place);
    const std::uint32_t journal = Place(m_context, ESlot::kMatrix, place, true);
    auto& pushed = m_pushed[journal];
    if (pushed.empty()) return;
    // All is as it was in front of the push, which must not stand without its pop.
    const SJournal::SEntry push = m_journals[journal].entries[pushed.back() - 1];
    pushed.pop_back();
    m_endings.emplace(push.call, m_at);
    Enter(journal, 0, push.previous);
}

void CEffects::Capability(std::uint32_t capability, bool on) {
    std::uint64_t place = capability;
    if (m_isEs1 && capability == GL_TEXTURE_2D) {
        place |= std::uint64_t{Value(m_context, ESlot::kActiveTexture)} << 32;
    }
    Set(m_context, ESlot::kCapability, place, on ? 1 : 0);
    if (m_isEs1 && capability == GL_COLOR_MATERIAL) {
        for (const GLenum pname : {GL_AMBIENT, GL_DIFFUSE}) {
            ReadPlace(m_context, ESlot::kColor);
            Add(m_context, ESlot::kMaterial, pname, 0);
        }
    }
}

void CEffects::Material(std::uint32_t pname) {
    if (pname == GL_AMBIENT_AND_DIFFUSE) {
        Set(m_context, ESlot::kMaterial, GL_AMBIENT);
        Set(m_context, ESlot::kMaterial, GL_DIFFUSE);
    } else {
        Set(m_context, ESlot::kMaterial, pname);
    }
}

void CEffects::Color() {
    Set(m_context, ESlot::kColor);
    if (Value(m_context, ESlot::kCapability, GL_COLOR_MATERIAL) == 0) return;
    Material(GL_AMBIENT_AND_DIFFUSE);
}

void CEffects::ColorMask(bool red, bool green, bool blue, bool alpha) {
    const int through = int{red} + int{green} + int{blue} + int{alpha};
    Set(m_context, ESlot::kColorMask, 0, through == 4 ? 0 : through == 0 ? 2 : 1);
}

void CEffects::DepthMask(bool on) {
    Set(m_context, ESlot::kDepthMask, 0, on ? 0 : 2);
}

void CEffects::StencilMask(std::uint32_t face, std::uint32_t mask) {
    // No stencil has more bits.
    const std::uint32_t value = (mask & 0xFF) == 0xFF ? 0 : (mask & 0xFF) == 0 ? 2 : 1;
    if (face != GL_BACK) Set(m_context, ESlot::kStencilMask, GL_FRONT, value);
    if (face != GL_FRONT) Set(m_context, ESlot::kStencilMask, GL_BACK, value);
}

void CEffects::Scissor(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    if (Resolves()) return;
    m_scissors.push_back({x, y, width, height});
    Set(m_context, ESlot::kScissor, 0, static_cast<std::uint32_t>(m_scissors.size()));
}

void CEffects::PixelStore(std::uint32_t pname) {
    Set(m_context, ESlot::kPixelStore, pname);
}

void CEffects::TextureEnvironment(std::uint32_t target, std::uint32_t pname) {
    const std::uint64_t unit = Value(m_context, ESlot::kActiveTexture);
    State(std::uint64_t{0xFF} << 56 | unit << 48, target, pname);
}

void CEffects::State(std::uint64_t state, std::uint32_t first, std::uint32_t second) {
    Set(m_context, ESlot::kState, state | std::uint64_t{first} << 24 | second);
}

void CEffects::Faces(std::uint64_t state, std::uint32_t face) {
    if (face != GL_BACK) State(state, GL_FRONT);
    if (face != GL_FRONT) State(state, GL_BACK);
}

}  // namespace kestrail
