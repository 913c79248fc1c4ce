// Memory that the application has told the host of, which need not be there: hosts read only those
// arrays that the shader uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrail::recorder {

class CReadable {
public:
    /// More than any array of use has.
    static constexpr std::size_t kMost = std::size_t{256} << 20;

    /// For up to kMost bytes.
    CReadable(const void* start, std::size_t size);

    /// The bytes; zeros stand for those that can't be read.
    const std::uint8_t* Data() const { return m_data; }

private:
    const std::uint8_t* m_data;
    std::vector<std::uint8_t> m_copy;
};

}  // namespace kestrail::recorder
