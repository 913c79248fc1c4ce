#include "tracefile/bytes/memory_manager.h"

#include <limits>
#include <new>

namespace kestrail {

// Kept: drops the reason, so that streams fail plainly; damaged recordings end as cut ones do.
MemoryManagerException::MemoryManagerException(std::uint32_t /*reason*/) : code(0) {}

MemoryManager& MemoryManager::Instance() {
    static MemoryManager instance;
    return instance;
}

MemoryManager::~MemoryManager() {
    if (m_file != nullptr) std::fclose(m_file);
}

bool MemoryManager::Open(const CKSTLString& name) {
    if (m_file != nullptr) std::fclose(m_file);
    m_file = std::fopen(name.c_str(), "rb");
    if (m_file == nullptr) return false;
    // Reads are of whole blocks, straight into the block.
    std::setvbuf(m_file, nullptr, _IONBF, 0);
    m_fileName = name;
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
    if (!m_block) Allocate(m_capacity);
    return Fill(0);
}

void MemoryManager::Allocate(std::uint32_t capacity) {
    m_capacity = capacity;
    m_block.reset(static_cast<std::uint8_t*>(std::calloc(capacity, 1)));
    if (!m_block) throw std::bad_alloc();
    m_blockStart = -1;
    m_position = -1;
    m_blockPos = -1;
}

bool MemoryManager::Fill(std::int32_t offset) {
    std::int64_t length = m_capacity;
    if (length + offset > m_fileSize) length = std::int64_t{m_fileSize} - offset;
    Forget(offset);
    if (offset < 0 || length <= 0 || m_file == nullptr) throw MemoryManagerException(3);
    std::fseek(m_file, offset, SEEK_SET);
    if (std::fread(m_block.get(), static_cast<std::size_t>(length), 1, m_file) != 1) {
        throw MemoryManagerException(3);
    }
    m_loaded = static_cast<std::uint32_t>(length);
    m_blockStart = offset;
    m_blockPos = 0;
    return true;
}

void MemoryManager::Forget(std::int64_t position) {
    m_loaded = 0;
    m_blockStart = -1;
    m_blockPos = static_cast<std::int32_t>(m_capacity);
    m_position = position;
}

bool MemoryManager::Read(void* destination, std::uint32_t size) {
    if (!m_block) return false;
    if (m_capacity < size) throw MemoryManagerException(1);
    if (ReadInBlock(destination, size)) return true;
    if (m_position > m_fileSize) {
        Forget(m_position);
        throw MemoryManagerException(3);
    }
    Fill(static_cast<std::int32_t>(m_position));
    return ReadInBlock(destination, size);
}

std::int32_t MemoryManager::SeekFar(std::int32_t offset, std::int32_t whence) {
    // Kept: the bare offset, whatever it counts from; damaged recordings end loading by it.
    if (offset >= m_fileSize || offset < 0 || m_blockPos == -1) throw MemoryManagerException(1);
    std::int64_t target = offset;
    if (whence == SEEK_CUR) target += m_position;
    if (whence == SEEK_END) target = std::int64_t{m_fileSize} - offset;
    const std::int64_t inBlock = target - m_blockStart;
    if (inBlock >= 0 && inBlock <= m_capacity && m_blockStart != -1) {
        m_blockPos = static_cast<std::int32_t>(inBlock);
        m_position = target;
        return static_cast<std::int32_t>(target);
    }
    if (target > m_fileSize) throw MemoryManagerException(1);
    Fill(static_cast<std::int32_t>(target));
    return static_cast<std::int32_t>(target);
}

void MemoryManager::Close() {
    if (m_file != nullptr) std::fclose(m_file);
    m_file = nullptr;
    m_block.reset();
    m_blockPos = 0;
    m_blockStart = 0;
}

}  // namespace kestrail
