#include "exec/extension_resolver.h"

#include <cstring>
#include <string_view>

#include "base/enumerants.h"
#include "host/hosts.h"

namespace kestrail {
namespace {

template <typename Names, typename Host>
void Ensure(SSession& session, Names& names, Host& host, bool SExtension::*has) {
    if (names.ExtensionsResolved()) return;
    const auto* list = reinterpret_cast<const char*>(host.glGetString(GL_EXTENSIONS));
    if (list == nullptr) return;
    SEglHost& egl = session.hosts.Egl();
    SExtensionEntries& entries = host;
    for (const SExtension& extension : Extensions()) {
        if (!(extension.*has) || !HasExtension(list, extension.name)) continue;
        for (const SEntryPlace& place : extension.entries) {
            SetEntry(&entries, place, egl.eglGetProcAddress(place.name));
        }
    }
    names.ExtensionsResolved() = true;
}

}  // namespace

bool HasExtension(const char* list, const char* name) {
    const std::string_view word(name);
    if (list == nullptr || word.empty() || word.find(' ') != std::string_view::npos) return false;
    const char* from = list;
    while (const char* hit = std::strstr(from, name)) {
        const char* behind = hit + word.size();
        // Kept: right behind a partial hit a word starts too; drivers' lists are read like that.
        const bool starts = hit == from || hit[-1] == ' ';
        if (starts && (*behind == ' ' || *behind == '\0')) return true;
        from = behind;
    }
    return false;
}

void EnsureEs1ExtensionResolver(SSession& session) {
    Ensure(session, session.es1Names, session.hosts.Es1(), &SExtension::es1);
}
void EnsureEs2ExtensionResolver(SSession& session) {
    Ensure(session, session.es2Names, session.hosts.Es2(), &SExtension::es2);
}

}  // namespace kestrail
