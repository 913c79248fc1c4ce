// One fixed block of an input file. Every byte of a trace is read through it, in both load modes.
// What is asked of the block passes through a window that stays in the processor's cache, so that
// file data takes no more memory than the window.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "base/kstl_string.h"

namespace kestrail {

/// A seek out of range, a read larger than the block, a refill that brought nothing. Which of them
/// it was makes no difference to whoever reads.
class MemoryManagerException {};

class MemoryManager {
public:
    /// The size of the block, which no single read may exceed.
    static constexpr std::uint32_t kBlockSize = 0x1400000;

    MemoryManager() = default;
    ~MemoryManager();
    MemoryManager(const MemoryManager&) = delete;
    MemoryManager& operator=(const MemoryManager&) = delete;

    /// Opens `name` with a block from its start. False if it cannot be opened. Throws when there is
    /// nothing to read in it.
    bool Open(const CKSTLString& name);
    /// Copies the next `size` bytes. False if nothing was opened. A read past the end of the file
    /// gives what the block holds there: bytes of the blocks before it, else zeros. A read larger
    /// than the block throws.
    bool Read(void* destination, std::uint32_t size);
    /// The part of `Read` that needs no file: false, and nothing done, when the bytes do not stand
    /// in the window.
    bool ReadInWindow(void* destination, std::uint32_t size) {
        if (size == 0 || static_cast<std::size_t>(m_end - m_next) < size) return false;
        // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): no window has no bytes.
        std::memcpy(destination, m_next, size);
        m_next += size;
        return true;
    }
    /// Passes the next `size` bytes, which stay where they are until the next read. Null, and
    /// nothing done, when they do not stand in the window.
    const std::uint8_t* TakeInWindow(std::uint32_t size) {
        if (static_cast<std::size_t>(m_end - m_next) < size) return nullptr;
        return std::exchange(m_next, m_next + size);
    }
    /// `whence` as in fseek. Returns the new absolute position; throws when `offset` is outside the
    /// file.
    std::int32_t Seek(std::int32_t offset, std::int32_t whence) {
        const std::int64_t inWindow = offset - m_windowStart;
        if (whence != SEEK_SET || inWindow < 0 || inWindow >= m_end - m_window.get()) {
            return SeekFar(offset, whence);
        }
        m_next = m_window.get() + inWindow;
        return offset;
    }
    /// Restarts the block at `offset`. Throws when the file brings nothing there; reads then go on
    /// failing until a seek succeeds.
    bool Fill(std::int32_t offset);
    /// A block of `capacity` bytes, at most 20 MiB, in place of the present one.
    void Allocate(std::uint32_t capacity);
    void Close();

    /// Of the next byte, from the file's start. May lie behind the file's end.
    std::int64_t Position() const { return m_windowStart + (m_next - m_window.get()); }
    std::int32_t FileSize() const { return m_fileSize; }

private:
    /// Bytes of the file that stand in the block from its first byte on.
    struct SFill {
        std::int64_t start = 0;
        std::uint32_t length = 0;
    };

    std::int32_t SeekFar(std::int32_t offset, std::int32_t whence);
    /// An empty window there.
    void MoveTo(std::int64_t position);
    /// A window of what the block has from there on.
    void LoadWindow(std::int64_t position);
    /// Nothing in the block is good any more: the next read or seek refills it.
    void Forget(std::int64_t position);
    /// Copies bytes of the block from the file.
    void CopyFromBlock(std::uint8_t* destination, std::uint32_t offset, std::uint32_t size);
    bool ReadFile(std::uint8_t* destination, std::int64_t offset, std::uint32_t size);

    std::unique_ptr<std::uint8_t[]> m_window;
    const std::uint8_t* m_next = nullptr;
    const std::uint8_t* m_end = nullptr;
    std::int64_t m_windowStart = 0;
    /// Negative for no block.
    std::int64_t m_blockStart = 0;
    std::uint32_t m_capacity = kBlockSize;
    /// The newest last. It stands in front of what those before it have more.
    std::vector<SFill> m_fills;
    std::FILE* m_file = nullptr;
    std::int32_t m_fileSize = 0;
};

}  // namespace kestrail
