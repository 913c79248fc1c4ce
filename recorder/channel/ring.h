// The memory that a recorded application and the command that records it share. The application
// appends the trace's records; the command takes them out and writes the file. What was appended is
// safe from whatever becomes of the application, SIGKILL included.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace kestrail {

/// What the command asks of the library. Stands in a file of the rendezvous folder.
struct SRecordSettings {
    static constexpr std::uint32_t kFileVersion = 1;

    std::uint32_t version = kFileVersion;
    std::uint32_t pictureEvery = 0;  ///< every how many frames a picture is taken; 0: never
    std::uint32_t lastFrame = 0;     ///< the last one recorded; 0: all
    bool exitBehindLast = false;     ///< the application ends behind that frame
    bool follow = true;              ///< children are recorded as well
    bool limit = true;               ///< the application is told only of what a trace can hold
    char only[256] = {};             ///< the executable's name that alone is recorded; empty: any
};

/// What stands in the rendezvous folder, and the environment variable that holds its path.
inline constexpr const char* kSettingsName = "settings";
inline constexpr const char* kSocketName = "socket";
inline constexpr const char* kFolderVariable = "KESTRAIL_RECORD_FOLDER";

/// Calls that were made but have no place in a trace, by name.
struct SLeftOut {
    char name[56];
    std::uint64_t count;
};

/// Two numbers of 4 bytes that the file has at a place instead of those appended.
struct SAmended {
    std::uint64_t place;
    std::uint32_t values[2];
};

/// The head of the shared memory. All of it is plain data that both sides read and write; each
/// field has one writer.
struct SRingHead {
    static constexpr std::size_t kLeftOutRoom = 2048;
    static constexpr std::size_t kAmendedRoom = 4096;

    // Written by the application. Positions count bytes from the first record on and never wrap.
    alignas(64) std::atomic<std::uint64_t> written;  ///< end of what may be taken out
    std::atomic<std::uint64_t> waitedNs;             ///< how long the application waited for room
    std::atomic<std::uint32_t> closed;               ///< nothing more will come

    // Written by the command.
    alignas(64) std::atomic<std::uint64_t> taken;  ///< bytes that have left the ring
    std::atomic<std::uint32_t> refused;            ///< nothing more is taken: appending is idle
    pthread_mutex_t served;                        ///< held by the command while it lives; robust

    alignas(64) std::atomic<std::uint32_t> amendedCount;
    SAmended amended[kAmendedRoom];
    std::atomic<std::uint32_t> leftOutCount;
    SLeftOut leftOut[kLeftOutRoom];
};

/// Bytes that may wait to be written.
inline constexpr std::size_t kRingBytes = std::size_t{64} << 20;
/// The head's room, in whole pages of any size.
inline constexpr std::size_t kRingHeadBytes = std::size_t{256} << 10;
static_assert(sizeof(SRingHead) <= kRingHeadBytes);

/// What a ring's memory is known by: a descriptor, or a System V segment where the size of files is
/// limited, which goes for a descriptor's memory too.
struct SRingMemory {
    int descriptor = -1;
    int segment = -1;
};

/// A mapped ring: its bytes stand twice in a row, so that no piece of up to kRingBytes has a seam.
class CRingMapping {
public:
    CRingMapping() = default;
    CRingMapping(const CRingMapping&) = delete;
    CRingMapping& operator=(const CRingMapping&) = delete;
    ~CRingMapping();

    /// Makes memory and maps it; the descriptor is the caller's. False when there is none.
    bool Create(SRingMemory& memory);
    /// False when it can't be mapped.
    bool Map(const SRingMemory& memory);
    bool Mapped() const { return m_head != nullptr; }

    SRingHead& Head() const { return *m_head; }
    std::uint8_t* At(std::uint64_t position) const { return m_bytes + position % kRingBytes; }

private:
    SRingHead* m_head = nullptr;
    std::uint8_t* m_bytes = nullptr;
};

}  // namespace kestrail
