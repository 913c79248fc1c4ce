#include "tracefile/bytes/memory_manager.h"

#include <algorithm>
#include <limits>

namespace kestrail {
namespace {

constexpr std::uint32_t kWindow = 128 << 10;
/// What is larger goes from the file to where it is wanted.
constexpr std::uint32_t kLargestCopied = kWindow / 8;

}  // namespace

MemoryManager::~MemoryManager() {
    if (m_file != nullptr) std::fclose(m_file);
}

bool MemoryManager::Open(const CKSTLString& name) {
    if (m_file != nullptr) std::fclose(m_file);
    m_file = std::fopen(name.c_str(), "rb");
    if (m_file == nullptr) return false;
    // Reads are of whole windows, straight into the window.
    std::setvbuf(m_file, nullptr, _IONBF, 0);
    m_fills.clear();
    std::fseek(m_file, 0, SEEK_SET);
    std::fseek(m_file, 0, SEEK_END);
    const long size = std::ftell(m_file);
    // Offsets in a trace are 32-bit and signed.
    if (size < 0 || size > std::numeric_limits<std::int32_t>::max()) {
        std::fclose(m_file);
        m_file = nullptr;
        Forget(0);
        return false;
    }
    m_fileSize = static_cast<std::int32_t>(size);
    if (!m_window) Allocate(m_capacity);
    return Fill(0);
}

void MemoryManager::Allocate(std::uint32_t capacity) {
    m_capacity = capacity;
    m_window = std::make_unique_for_overwrite<std::uint8_t[]>(kWindow);
    m_fills.clear();
    Forget(-1);
}

bool MemoryManager::Fill(std::int32_t offset) {
    const std::int64_t length =
        std::min<std::int64_t>(m_capacity, std::int64_t{m_fileSize} - offset);
    Forget(offset);
    if (offset < 0 || length <= 0 || m_file == nullptr) throw MemoryManagerException();
    while (!m_fills.empty() && m_fills.back().length <= length) m_fills.pop_back();
    m_fills.push_back({offset, static_cast<std::uint32_t>(length)});
    m_blockStart = offset;
    LoadWindow(offset);
    return true;
}

void MemoryManager::MoveTo(std::int64_t position) {
    m_windowStart = position;
    m_next = m_window.get();
    m_end = m_next;
}

void MemoryManager::Forget(std::int64_t position) {
    m_blockStart = -1;
    MoveTo(position);
}

void MemoryManager::LoadWindow(std::int64_t position) {
    MoveTo(position);
    const SFill& fill = m_fills.back();
    const std::int64_t left = fill.start + fill.length - position;
    const auto size = static_cast<std::uint32_t>(std::min<std::int64_t>(left, kWindow));
    if (!ReadFile(m_window.get(), position, size)) {
        Forget(position);
        throw MemoryManagerException();
    }
    m_end = m_next + size;
}

bool MemoryManager::Read(void* destination, std::uint32_t size) {
    if (!m_window) return false;
    if (m_capacity < size) throw MemoryManagerException();
    // Kept: to the block's end, not the file's; recordings that were cut load up to the cut.
    if (m_blockStart < 0 || Position() - m_blockStart + size > m_capacity) {
        const std::int64_t position = Position();
        if (position > m_fileSize) {
            Forget(position);
            throw MemoryManagerException();
        }
        Fill(static_cast<std::int32_t>(position));
    }
    auto* rest = static_cast<std::uint8_t*>(destination);
    const auto ready = static_cast<std::uint32_t>(std::min<std::ptrdiff_t>(size, m_end - m_next));
    ReadInWindow(rest, ready);
    rest += ready;
    size -= ready;
    const std::int64_t position = Position();
    const auto inBlock = static_cast<std::uint32_t>(position - m_blockStart);
    if (size <= kLargestCopied && inBlock + size <= m_fills.back().length) {
        if (size == 0) return true;
        LoadWindow(position);
        return ReadInWindow(rest, size);
    }
    CopyFromBlock(rest, inBlock, size);
    MoveTo(position + size);
    return true;
}

void MemoryManager::CopyFromBlock(std::uint8_t* destination, std::uint32_t offset,
                                  std::uint32_t size) {
    for (auto fill = m_fills.rbegin(); fill != m_fills.rend() && size > 0; ++fill) {
        if (offset >= fill->length) continue;
        const std::uint32_t piece = std::min(size, fill->length - offset);
        if (!ReadFile(destination, fill->start + offset, piece)) break;
        destination += piece;
        offset += piece;
        size -= piece;
    }
    std::memset(destination, 0, size);
}

bool MemoryManager::ReadFile(std::uint8_t* destination, std::int64_t offset, std::uint32_t size) {
    return std::fseek(m_file, static_cast<long>(offset), SEEK_SET) == 0 &&
           std::fread(destination, size, 1, m_file) == 1;
}

std::int32_t MemoryManager::SeekFar(std::int32_t offset, std::int32_t whence) {
    // Kept: the bare offset, whatever it counts from; damaged recordings end loading by it.
    if (offset >= m_fileSize || offset < 0 || Position() == -1) throw MemoryManagerException();
    std::int64_t target = offset;
    if (whence == SEEK_CUR) target += Position();
    if (whence == SEEK_END) target = std::int64_t{m_fileSize} - offset;
    const std::int64_t inBlock = target - m_blockStart;
    if (m_blockStart != -1 && inBlock >= 0 && inBlock <= m_capacity) {
        const std::int64_t inWindow = target - m_windowStart;
        if (inWindow >= 0 && inWindow <= m_end - m_window.get()) {
            m_next = m_window.get() + inWindow;
        } else {
            MoveTo(target);
        }
        return static_cast<std::int32_t>(target);
    }
    if (target > m_fileSize) throw MemoryManagerException();
    Fill(static_cast<std::int32_t>(target));
    return static_cast<std::int32_t>(target);
}

void MemoryManager::Close() {
    if (m_file != nullptr) std::fclose(m_file);
    m_file = nullptr;
    m_window.reset();
    m_fills.clear();
    m_blockStart = 0;
    MoveTo(0);
}

}  // namespace kestrail
