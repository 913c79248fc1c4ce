// One fixed block of the input file in memory. Every byte of a trace is read through it, in both
// load modes, so that file data never takes more than the block.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/kstl_string.h"

namespace kestrail {

/// A seek out of range, a read larger than the block, a refill that brought nothing.
class MemoryManagerException {
public:
    explicit MemoryManagerException(std::uint32_t reason);
    std::uint32_t code;
};

class MemoryManager {
public:
    /// The size of the block, which no single read may exceed.
    static constexpr std::uint32_t kBlockSize = 0x1400000;

    static MemoryManager& Instance();

    /// Opens `name` and fills the block from its start. False if it cannot be opened. Throws when
    /// there is nothing to read in it.
    bool Open(const CKSTLString& name);
    /// Copies the next `size` bytes. False if nothing was opened. A read past the end of the file
    /// gives what the block holds there; a read larger than the block throws.
    bool Read(void* destination, std::uint32_t size);
    /// The part of `Read` that needs no refill: false, and nothing done, when the bytes do not
    /// stand in the block.
    bool ReadInBlock(void* destination, std::uint32_t size) {
        const std::uint64_t end = std::uint64_t{static_cast<std::uint32_t>(m_blockPos)} + size;
        // Kept: to the block's end, not the file's; recordings that were cut load up to the cut.
        if (end > m_capacity || !m_block) return false;
        std::memcpy(destination, m_block.get() + m_blockPos, size);
        m_blockPos += static_cast<std::int32_t>(size);
        m_position += size;
        return true;
    }
    /// `whence` as in fseek. Returns the new absolute position; throws when `offset` is outside the
    /// file.
    std::int32_t Seek(std::int32_t offset, std::int32_t whence) {
        const std::int64_t inBlock = std::int64_t{offset} - m_blockStart;
        if (whence != SEEK_SET || offset >= m_fileSize || m_blockPos < 0 || m_blockStart < 0 ||
            inBlock < 0 || inBlock > m_capacity) {
            return SeekFar(offset, whence);
        }
        m_blockPos = static_cast<std::int32_t>(inBlock);
        m_position = offset;
        return offset;
    }
    /// Restarts the block at `offset`. Throws when the file brings nothing there; reads then go on
    /// failing until a seek succeeds.
    bool Fill(std::int32_t offset);
    /// A block of `capacity` bytes, at most 20 MiB, in place of the present one.
    void Allocate(std::uint32_t capacity);
    void Close();

    /// Of the next byte, from the file's start. May lie behind the file's end.
    std::int64_t Position() const { return m_position; }
    std::int32_t FileSize() const { return m_fileSize; }

private:
    MemoryManager() = default;
    ~MemoryManager();

    std::int32_t SeekFar(std::int32_t offset, std::int32_t whence);
    /// Nothing in the block is good any more: the next read or seek refills it.
    void Forget(std::int64_t position);

    struct Free {
        void operator()(std::uint8_t* block) const { std::free(block); }
    };
    // Zeroed pages that the system hands out as they are touched: a small file takes little.
    std::unique_ptr<std::uint8_t, Free> m_block;
    std::int32_t m_blockStart = 0;
    std::uint32_t m_capacity = kBlockSize;
    std::uint32_t m_loaded = 0;
    std::int64_t m_position = 0;
    std::int32_t m_blockPos = 0;
    std::FILE* m_file = nullptr;
    std::int32_t m_fileSize = 0;
    CKSTLString m_fileName;
};

}  // namespace kestrail
