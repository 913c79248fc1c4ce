#include "tracefile/bytes/io_manager.h"

namespace kestrail {

IOManager::~IOManager() {
    if (m_writeFile != nullptr) std::fclose(m_writeFile);
}

bool IOManager::Open(const CKSTLString& name, bool read) {
    m_readMode = read;
    if (!read) {
        if (m_writeFile != nullptr) std::fclose(m_writeFile);
        m_writeFile = std::fopen(name.c_str(), "wb");
        return m_writeFile != nullptr;
    }
    try {
        return m_memory.Open(name);
    } catch (const MemoryManagerException&) {
        return false;
    }
}

bool IOManager::ReadWithRefill(void* buffer, std::uint32_t size) {
    try {
        return m_memory.Read(buffer, size);
    } catch (const MemoryManagerException&) {
        return false;
    }
}

bool IOManager::Write(const void* buffer, std::uint32_t size) {
    if (m_writeFile == nullptr) return false;
    // Nothing to write may come with no pointer, which fwrite must not see.
    if (size == 0) return true;
    return std::fwrite(buffer, size, 1, m_writeFile) == size;
}

std::uint32_t IOManager::TellWritten() const {
    return m_writeFile != nullptr ? static_cast<std::uint32_t>(std::ftell(m_writeFile)) : 0;
}

void IOManager::Close() {
    if (m_readMode) return m_memory.Close();
    if (m_writeFile != nullptr) std::fclose(m_writeFile);
    m_writeFile = nullptr;
}

}  // namespace kestrail
