// The little that a stand-in library for benchmarks knows: names, and a few constants.
#pragma once

#include <cstdint>

namespace kestrail::host {

inline std::uint32_t NextName() {
    static std::uint32_t last = 100;
    return ++last;
}

inline std::int32_t NextLocation() {
    static std::int32_t last = 1000;
    return ++last;
}

inline void* Handle(unsigned number) {
    return reinterpret_cast<void*>(std::uintptr_t{0x7A0000000000ULL} + number);
}

inline void Integerv(unsigned pname, std::int32_t* data) {
    switch (pname) {
        case 0x0BA2:  // GL_VIEWPORT
            data[0] = 0;
            data[1] = 0;
            data[2] = 300;
            data[3] = 300;
            break;
        case 0x8869:  // GL_MAX_VERTEX_ATTRIBS
            *data = 16;
            break;
        default:
            *data = 0;
    }
}

}  // namespace kestrail::host
