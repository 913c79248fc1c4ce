#include "host/host_lib.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstring>

#include "base/output.h"

namespace kestrail {
namespace {

// Stands in a table for an entry point that cannot be called. It never returns, so what the caller
// passed and expects back does not matter.
[[noreturn]] void MissingEntry() {
    throw CHostLibException(CHostLibException::kLoadFailed);
}

void* Open(const char* name) {
    return dlopen(name, RTLD_LAZY | RTLD_GLOBAL);
}

void ReportOpenError(const char* name) {
    const char* text = dlerror();
    if (text != nullptr) output::Error("dlopen failed with error: %s => %s", text, name);
}

void* OpenHereOrThere(const CKSTLString& name) {
    void* handle = Open(name.c_str());
    if (handle != nullptr) return handle;
    ReportOpenError(name.c_str());

    // A name that is too long is cut: it would not open uncut either.
    char local[256];
    std::snprintf(local, sizeof local, "./%s", name.c_str());
    handle = Open(local);
    if (handle != nullptr) {
        output::Message("dlopen loaded (MOD PATH) %s", local);
    } else {
        ReportOpenError(local);
    }
    return handle;
}

}  // namespace

void SetEntry(void* entries, const SEntryPlace& place, EntryAddress address) {
    std::memcpy(static_cast<std::byte*>(entries) + place.offset, &address, sizeof address);
}

SHostLib::SHostLib(const CKSTLString& path) {
    handle = OpenHereOrThere(path);
    // Kept: without the last character, which lines of a file may leave on a path.
    if (handle == nullptr && !path.empty()) {
        handle = OpenHereOrThere(path.substr(0, path.length() - 1));
    }
    if (handle != nullptr) {
        output::Message("Host Library Loaded: %s", path.c_str());
        return;
    }
    output::Message("Could not load Host library.... %s. Path: %s Missing dll/so?", path.c_str(),
                    path.c_str());
    failed = true;
    // Kept: spelled like that; readers match it.
    output::Message("Exception ERROR__LOADLIBFAILD ...");
    throw CHostLibException(CHostLibException::kLoadFailed);
}

SHostLib::~SHostLib() {
    Unload();
}

void* SHostLib::GetProcAddress(const char* name) {
    if (handle == nullptr) return nullptr;
    void* address = dlsym(handle, name);
    if (address == nullptr && !optional) {
        failed = true;
        output::Message("Error loading library %s", name);
    }
    return address;
}

void SHostLib::Unload() {
    if (handle == nullptr) return;
    dlclose(handle);
    handle = nullptr;
}

void SHostLib::ResolveEntries(void* entries, std::span<const SEntryPlace> places) {
    for (const SEntryPlace& place : places) {
        auto address = reinterpret_cast<EntryAddress>(GetProcAddress(place.name));
        if (address == nullptr && !optional) address = &MissingEntry;
        SetEntry(entries, place, address);
    }
}

void SHostLib::UnloadEntries(void* entries, std::span<const SEntryPlace> places) {
    Unload();
    for (const SEntryPlace& place : places) {
        void* address = nullptr;
        std::memcpy(&address, static_cast<const std::byte*>(entries) + place.offset,
                    sizeof address);
        Dl_info info;
        if (dladdr(address, &info) == 0) SetEntry(entries, place, &MissingEntry);
    }
}

}  // namespace kestrail
