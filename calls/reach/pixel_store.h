// What a context reads pixels by, as far as the player has set it: known without asking the host.
#pragma once

#include <cstdint>

namespace kestrail {

struct SPixelStore {
    std::int32_t unpackAlignment = 4;
    std::int32_t unpackRowLength = 0;
    std::int32_t unpackImageHeight = 0;
    std::int32_t unpackSkipPixels = 0;
    std::int32_t unpackSkipRows = 0;
    std::int32_t unpackSkipImages = 0;
    std::int32_t packAlignment = 4;
    /// Live name of the buffer bound to GL_PIXEL_UNPACK_BUFFER. While there is one, the pointer of
    /// an image is an offset into it.
    std::uint32_t unpackBuffer = 0;
    std::int32_t packRowLength = 0;
    std::int32_t packSkipPixels = 0;
    std::int32_t packSkipRows = 0;
    std::int32_t packReversed = 0;  ///< rows are written from the last one on

    /// What an image is written by, as if it were read that way.
    SPixelStore Packing() const {
        SPixelStore packing;
        packing.unpackAlignment = packAlignment;
        packing.unpackRowLength = packRowLength;
        packing.unpackSkipPixels = packSkipPixels;
        packing.unpackSkipRows = packSkipRows;
        return packing;
    }

    /// Where the value of a glPixelStorei's name stands; null for a name that isn't followed.
    std::int32_t* Find(std::uint32_t name);
    /// Follows a glPixelStorei; values that no host takes change nothing.
    void Set(std::uint32_t name, std::int32_t value);
};

}  // namespace kestrail
