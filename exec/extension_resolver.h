// Finds the entry points of extensions. They depend on the context, so they are looked for when the
// first call needs one, by the context's list of extensions.
#pragma once

#include "exec/session.h"

namespace kestrail {

/// Whether the blank-separated `list` has the word `name`. A hit right behind an earlier partial
/// hit counts as the start of a word.
bool HasExtension(const char* list, const char* name);

/// Fills the API's slots of extension entries, unless that is done. Without an answer from the
/// host, the next call tries again.
void EnsureEs1ExtensionResolver(SSession& session);
void EnsureEs2ExtensionResolver(SSession& session);

}  // namespace kestrail
