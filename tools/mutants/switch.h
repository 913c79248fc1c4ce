// Included ahead of every source of the copy that scripts/mutants builds. Each mutant asks here
// whether it is the one of this run: KESTRAIL_MUTANT is its number. KESTRAIL_MUTANTS_REACHED is a
// file with a byte a mutant, set as soon as the mutant asks; it is mapped, so that what is set
// stands however the process ends.
#pragma once

#ifdef __cplusplus
#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrail_mutants {

inline constinit int g_active = -1;
inline constinit unsigned char* g_reached = nullptr;

[[gnu::noinline, gnu::cold]] inline void Start() {
    const char* number = getenv("KESTRAIL_MUTANT");
    g_active = number != nullptr ? atoi(number) : 0;
    const char* path = getenv("KESTRAIL_MUTANTS_REACHED");
    const int file = path != nullptr ? open(path, O_RDWR | O_CLOEXEC) : -1;
    if (file < 0) return;
    struct stat status {};
    fstat(file, &status);
    const auto size = static_cast<size_t>(status.st_size);
    void* bytes = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (bytes != MAP_FAILED) g_reached = static_cast<unsigned char*>(bytes);
    close(file);
}

/// Mutants are counted from 1.
inline bool On(int number) {
    if (g_active < 0) Start();
    if (g_reached != nullptr) g_reached[number] = 1;
    return g_active == number;
}

}  // namespace kestrail_mutants
#endif
