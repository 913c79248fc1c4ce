#include "exec/egl_names.h"

namespace kestrail {
namespace {

std::uint64_t Key(const void* live) {
    return reinterpret_cast<std::uintptr_t>(live);
}

/// The entry of a nested table; null without a table or an entry.
template <typename Live>
const Live* FindNested(const TNameTable<std::uint64_t, TNameTable<std::uint64_t, Live>>& tables,
                       EGLDisplay display, std::uint64_t recorded) {
    const auto* table = tables.Find(Key(display));
    return table != nullptr ? table->Find(recorded) : nullptr;
}

template <typename Live>
void EraseNested(TNameTable<std::uint64_t, TNameTable<std::uint64_t, Live>>& tables,
                 EGLDisplay display, std::uint64_t recorded) {
    auto* table = tables.Find(Key(display));
    if (table != nullptr) table->Erase(recorded);
}

/// Whether a list goes on: a host ends it at a name alone.
bool IsPair(const EGLint* list) {
    return list != nullptr && list[0] != EGL_NONE;
}

/// Where the last value of an attribute stands; null without one.
const EGLint* ValueOf(const EGLint* list, EGLint attribute) {
    const EGLint* found = nullptr;
    for (; IsPair(list); list += 2) {
        if (list[0] == attribute) found = list + 1;
    }
    return found;
}

/// A size of -1 asks for the stored one; any other is stored.
void StoreOrLoad(std::int32_t& value, std::int32_t& stored) {
    if (value == -1) {
        value = stored;
    } else {
        stored = value;
    }
}

}  // namespace

std::int32_t ContextVersion(const EGLint* attributes) {
    const EGLint* const version = ValueOf(attributes, EGL_CONTEXT_CLIENT_VERSION);
    return version != nullptr ? *version : 1;
}

const EGLint* CheckedAttributes(const EGLint* attributes, std::vector<EGLint>& room) {
    if (ValueOf(attributes, EGL_CONTEXT_OPENGL_NO_ERROR_KHR) == nullptr) return attributes;
    room.clear();
    for (const EGLint* pair = attributes; IsPair(pair); pair += 2) {
        if (pair[0] != EGL_CONTEXT_OPENGL_NO_ERROR_KHR) room.insert(room.end(), pair, pair + 2);
    }
    room.push_back(EGL_NONE);
    return room.data();
}

CEglNames::CEglNames() : m_context(&m_contextStates.GetOrCreate(0)) {}

EGLDisplay CEglNames::GetDisplay(Recorded recorded) const {
    if (recorded == 0) return EGL_NO_DISPLAY;
    const EGLDisplay* live = m_displays.Find(recorded);
    return live != nullptr ? *live : EGL_NO_DISPLAY;
}

void CEglNames::SetDisplay(Recorded recorded, EGLDisplay live, EGLNativeDisplayType native) {
    m_displays.GetOrCreate(recorded) = live;
    m_nativeDisplays.GetOrCreate(Key(live)) = native;
}

EGLNativeDisplayType CEglNames::GetNativeDisplay(EGLDisplay live) const {
    if (live == EGL_NO_DISPLAY) return EGLNativeDisplayType{};
    const EGLNativeDisplayType* native = m_nativeDisplays.Find(Key(live));
    return native != nullptr ? *native : EGLNativeDisplayType{};
}

EGLSurface CEglNames::GetSurface(EGLDisplay live, Recorded recorded) const {
    if (recorded == 0) return EGL_NO_SURFACE;
    const EGLSurface* surface = FindNested(m_surfaces, live, recorded);
    return surface != nullptr ? *surface : EGL_NO_SURFACE;
}

void CEglNames::SetSurface(EGLDisplay live, Recorded recorded, EGLSurface surface) {
    m_surfaces.GetOrCreate(Key(live)).GetOrCreate(recorded) = surface;
}

void CEglNames::RemoveSurface(EGLDisplay live, Recorded recorded) {
    EraseNested(m_surfaces, live, recorded);
}

EGLContext CEglNames::GetContext(EGLDisplay live, Recorded recorded) {
    if (recorded == 0) return EGL_NO_CONTEXT;
    // Kept: makes an entry on a miss, unlike GetSurface; ClearDisplay counts the tables.
    return m_contexts.GetOrCreate(Key(live)).GetOrCreate(recorded);
}

void CEglNames::SetContext(EGLDisplay live, Recorded recorded, EGLContext context,
                           std::int32_t version) {
    m_contexts.GetOrCreate(Key(live)).GetOrCreate(recorded) = context;
    if (context == EGL_NO_CONTEXT) return;
    // A host may hand out the handle of a destroyed context again; the new one starts afresh.
    SContextState& state = m_contextStates.GetOrCreate(Key(context));
    state = SContextState{};
    state.version = version;
}

void CEglNames::RemoveContext(EGLDisplay live, Recorded recorded) {
    // One that is current stays in use until another one is.
    SContextState* state = m_contextStates.Find(Key(GetContext(live, recorded)));
    if (state != nullptr && state != m_context) *state = SContextState{};
    EraseNested(m_contexts, live, recorded);
}

const EGLConfig* CEglNames::FindConfig(EGLDisplay live, Recorded recorded) const {
    return FindNested(m_configs, live, recorded);
}

void CEglNames::SetConfig(EGLDisplay live, Recorded recorded, EGLConfig config) {
    m_configs.GetOrCreate(Key(live)).GetOrCreate(recorded) = config;
}

void CEglNames::ClearDisplay(EGLDisplay live) {
    auto* surfaces = m_surfaces.Find(Key(live));
    if (surfaces != nullptr) surfaces->Clear();
    auto* contexts = m_contexts.Find(Key(live));
    if (contexts != nullptr) contexts->Clear();
    // Kept: the last table goes, whosever it is; recordings of one display know no other.
    if (m_contexts.Count() == 1) m_contexts.Clear();
}

void CEglNames::RemoveDisplay(Recorded recorded) {
    const EGLDisplay* found = m_displays.Find(recorded);
    if (found == nullptr) return;
    const std::uint64_t live = Key(*found);
    m_displays.Erase(recorded);
    m_nativeDisplays.Erase(live);
    m_surfaces.Erase(live);
    m_contexts.Erase(live);
    m_configs.Erase(live);
}

void CEglNames::SurfaceGeometry(std::int32_t& liveWidth, std::int32_t& liveHeight,
                                std::int32_t& recordedWidth, std::int32_t& recordedHeight,
                                EGLDisplay& display) {
    StoreOrLoad(liveWidth, m_liveWidth);
    StoreOrLoad(liveHeight, m_liveHeight);
    StoreOrLoad(recordedWidth, m_recordedWidth);
    StoreOrLoad(recordedHeight, m_recordedHeight);
    if (display == EGL_NO_DISPLAY) {
        display = m_surfaceDisplay;
    } else {
        m_surfaceDisplay = display;
    }
}

void CEglNames::UseContext(EGLContext context) {
    m_context = &m_contextStates.GetOrCreate(Key(context));
}

}  // namespace kestrail
