// The byte stream of a trace file, with a block of its own.
#pragma once

#include <cstdint>
#include <cstdio>

#include "base/kstl_string.h"
#include "tracefile/bytes/memory_manager.h"

namespace kestrail {

class IOManager {
public:
    IOManager() = default;
    ~IOManager();
    IOManager(const IOManager&) = delete;
    IOManager& operator=(const IOManager&) = delete;

    /// Opens `name` for reading or writing; false if that fails or there is nothing to read.
    bool Open(const CKSTLString& name, bool read);
    /// The next `size` bytes; false if they could not be had. `swapHint` is not used.
    bool Read(void* buffer, std::uint32_t size, bool /*swapHint*/) {
        return m_memory.ReadInWindow(buffer, size) || ReadWithRefill(buffer, size);
    }
    /// Passes the next `size` bytes if they are at hand; otherwise null, and nothing done.
    const std::uint8_t* TakeAtHand(std::uint32_t size) { return m_memory.TakeInWindow(size); }
    // Kept: true for one byte only, as the count of items is compared; tools that save expect it.
    bool Write(const void* buffer, std::uint32_t size);
    std::int32_t Seek(std::int32_t offset, std::int32_t whence) {
        return m_memory.Seek(offset, whence);
    }
    std::uint32_t GetSize() const { return static_cast<std::uint32_t>(m_memory.FileSize()); }
    std::uint32_t Tell() const {
        return m_readMode ? static_cast<std::uint32_t>(m_memory.Position()) : TellWritten();
    }
    /// Bytes between the read position and the file's end.
    std::uint32_t Remaining() const {
        const std::uint32_t position = Tell();
        return position < GetSize() ? GetSize() - position : 0;
    }
    void Close();
    MemoryManager& Memory() { return m_memory; }

private:
    std::uint32_t TellWritten() const;
    bool ReadWithRefill(void* buffer, std::uint32_t size);

    std::FILE* m_writeFile = nullptr;
    MemoryManager m_memory;
    bool m_readMode = true;
};

}  // namespace kestrail
