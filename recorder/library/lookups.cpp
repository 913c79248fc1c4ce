// Applications that don't link with the host's libraries look their entries up: those of ours are
// handed out in their place.
#include <dlfcn.h>
#include <link.h>

#include <cstring>

#include "recorder/library/host.h"
#include "recorder/library/recorder.h"

namespace kestrail::recorder {
namespace {

/// The library behind the handle, as far as it is one that we stand for.
ELibrary LibraryBehind(void* handle) {
    if (handle == nullptr || handle == RTLD_NEXT) return kLibraries;
    link_map* map = nullptr;
    if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0 || map == nullptr) return kLibraries;
    return LibraryOf(map->l_name);
}

struct SAnswer {
    bool given = false;
    void* address = nullptr;
};

/// What a name is in our place: our entry, where it is looked up in a library that we stand for;
/// nothing, where we alone have it. Other names, and where else it is looked up, are left alone.
SAnswer Answer(void* handle, const char* name) {
    const bool ours = std::strncmp(name, "gl", 2) == 0 || std::strncmp(name, "egl", 3) == 0;
    const int entry = ours ? FindEntry(name) : -1;
    if (entry < 0) return {};
    const ELibrary library = LibraryBehind(handle);
    if (library == kLibraries) {
        const bool found = handle != RTLD_NEXT && PlainLookUp(handle, name) == kEntries[entry].ours;
        return {found && !IsLoaded(name), nullptr};
    }
    if (!CRecorder::Instance().Wanted() || PlainLookUp(handle, name) == nullptr) return {};
    KeepLibrary(library, handle);
    return {true, kEntries[entry].ours};
}

[[gnu::constructor]] void Load() {
    CRecorder::Instance().Start();
}

}  // namespace
}  // namespace kestrail::recorder

extern "C" [[gnu::visibility("default")]] void* dlsym(void* handle, const char* name) noexcept {
    using namespace kestrail::recorder;
    const SAnswer answer = Answer(handle, name);
    if (answer.given) return answer.address;
    return PlainLookUp(handle, name);
}
