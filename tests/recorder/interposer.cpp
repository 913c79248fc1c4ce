// Stands before getppid of the C library, as libraries do that are loaded ahead of a program's own.
#include <dlfcn.h>
#include <unistd.h>

extern "C" pid_t getppid() noexcept {
    void* const next = dlsym(RTLD_NEXT, "getppid");
    if (next == reinterpret_cast<void*>(&getppid)) return 0;
    return reinterpret_cast<decltype(&getppid)>(next)();
}
