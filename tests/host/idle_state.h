// The little that a stand-in library for benchmarks knows: names, and a few constants.
#pragma once

#include <algorithm>
#include <cstdint>

namespace kestrail::host {

inline std::uint32_t NewName(const char*) {
    static std::uint32_t last = 100;
    return ++last;
}

inline std::int32_t NewLocation() {
    static std::int32_t last = 1000;
    return ++last;
}

inline std::int32_t NewAttribute() {
    return NewLocation() % 8;
}

inline void* MakeHandle(const char* kind, unsigned number) {
    return reinterpret_cast<void*>(std::uintptr_t{0x7A0000000000ULL} + kind[0] * 16U + number);
}

inline void* NewHandle(const char* kind) {
    return MakeHandle(kind, 1);
}

inline void Integerv(unsigned pname, std::int32_t* data) {
    constexpr std::int32_t viewport[] = {0, 0, 300, 300};
    if (pname == 0x0BA2) {  // GL_VIEWPORT
        std::copy_n(viewport, 4, data);
    } else {
        *data = pname == 0x8869 ? 16 : 0;  // GL_MAX_VERTEX_ATTRIBS
    }
}

}  // namespace kestrail::host
