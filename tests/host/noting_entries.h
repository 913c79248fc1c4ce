// Entry points that a test's own program holds, for tables that no library fills. They answer as
// the idle stand-ins do, and each says that it was called.
#pragma once

#include <string>

namespace kestrail::host {

using Entry = void (*)();

/// Null for an entry that the API lacks. Those of extensions are EGL's to hand out.
Entry FindEglEntry(const std::string& name);
Entry FindEs1Entry(const std::string& name);
/// ES 3.0 as well.
Entry FindEs2Entry(const std::string& name);

/// What the entries call, with their name as the recording stand-ins log it. The test's.
void Note(const char* entry);

}  // namespace kestrail::host
