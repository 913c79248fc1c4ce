// Tables of entry points: records of pointers to functions, which are filled by name.
#pragma once

#include <cstddef>

namespace kestrail {

/// Where the pointer of an entry point stands in its table.
struct SEntryPlace {
    const char* name;
    std::size_t offset;
};

using EntryAddress = void (*)();

/// Stores `address` at the place in the record `entries`, whatever the pointer's type there.
void SetEntry(void* entries, const SEntryPlace& place, EntryAddress address);

}  // namespace kestrail
