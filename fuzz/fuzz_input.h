// What the fuzz targets share: an input as a file that the player can open, and the process around
// it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kestrail {

/// A file in memory, one for the process.
class CInputFile {
public:
    /// Replaces the content. Ends the process if there is no room for it.
    static CInputFile& With(const std::uint8_t* data, std::size_t size);

    const char* Path() const { return m_path.c_str(); }

private:
    CInputFile();

    int m_file = -1;
    std::string m_path;
};

/// Sends standard output to nowhere for good.
void Silence();

/// The block that files are read through, which the next file opened gets.
void SetReadBlock(std::uint32_t bytes);

}  // namespace kestrail
