#include "pictures/png.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace kestrail {
namespace {

/// libpng's simplified reader and writer, which report instead of jumping.
struct SPng : png_image {
    SPng() : png_image{} { version = PNG_IMAGE_VERSION; }
    ~SPng() { png_image_free(this); }
    SPng(const SPng&) = delete;
    SPng& operator=(const SPng&) = delete;

    std::string Problem() const { return message[0] != '\0' ? message : "it is no PNG file"; }
};

/// Rows from the bottom on, as pictures have them.
png_int_32 Stride(std::uint32_t width, std::uint32_t channels) {
    return -static_cast<png_int_32>(width * channels);
}

}  // namespace

std::string WritePng(const SPicture& picture, const std::string& path) {
    SPng png;
    png.width = picture.width;
    png.height = picture.height;
    png.format = PNG_FORMAT_RGB;
    std::vector<std::uint8_t> colors;
    colors.reserve(picture.pixels.size() / 4 * 3);
    for (std::size_t i = 0; i < picture.pixels.size(); i += 4) {
        colors.insert(colors.end(), &picture.pixels[i], &picture.pixels[i] + 3);
    }
    const std::string unfinished = path + ".part";
    errno = 0;
    if (png_image_write_to_file(&png, unfinished.c_str(), 0, colors.data(),
                                Stride(picture.width, 3), nullptr) == 0) {
        const int reason = errno;
        std::remove(unfinished.c_str());
        return reason != 0 ? std::strerror(reason) : png.Problem();
    }
    if (std::rename(unfinished.c_str(), path.c_str()) != 0) return std::strerror(errno);
    return {};
}

std::string ReadPng(const std::string& path, SPicture& picture) {
    // As much as any window, and as little as any memory.
    constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 28;
    picture = SPicture{};
    SPng png;
    errno = 0;
    if (png_image_begin_read_from_file(&png, path.c_str()) == 0) {
        return errno != 0 ? std::strerror(errno) : png.Problem();
    }
    if (std::uint64_t{png.width} * png.height > kMostPixels) return "it is too large";
    png.format = PNG_FORMAT_RGBA;
    picture.width = png.width;
    picture.height = png.height;
    picture.pixels.resize(std::size_t{4} * png.width * png.height);
    if (png_image_finish_read(&png, nullptr, picture.pixels.data(), Stride(png.width, 4),
                              nullptr) == 0) {
        picture = SPicture{};
        return png.Problem();
    }
    return {};
}

}  // namespace kestrail
