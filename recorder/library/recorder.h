// The recording of one process: what the command asked for, the ring that takes the records, and
// the order in which calls of all threads end up in it.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <vector>

#include "recorder/channel/ring.h"

namespace kestrail::recorder {

/// Held for as long as a record is appended. A call or two of another thread are waited for without
/// help of the system.
class CShortLock {
public:
    /// False, at once, for a thread that holds it: one that was interrupted by a signal.
    bool Take(std::uint32_t thread) {
        std::uint32_t holder = 0;
        if (m_holder.compare_exchange_strong(holder, thread, std::memory_order_acquire)) [[likely]]
            return true;
        return holder != thread && Wait(thread);
    }
    void Release() { m_holder.store(0, std::memory_order_release); }

private:
    bool Wait(std::uint32_t thread);

    std::atomic<std::uint32_t> m_holder{0};
};

class CRecorder {
public:
    /// The process's one. It is never destroyed: applications call EGL while they end.
    static CRecorder& Instance();

    /// Reads what the command asked for, as the library is loaded, once. Without a command, and
    /// where another executable is to be recorded, nothing will be.
    void Start();
    /// Whether the process is one that is to be recorded, which its first call of EGL opens.
    bool Wanted() const { return m_wanted; }
    const SRecordSettings& Settings() const { return m_settings; }

    /// Makes the ring and has the command take it up, once. Later calls do nothing.
    void Open();
    /// Calls are recorded now.
    bool Records() const { return m_records.load(std::memory_order_relaxed); }
    /// Ends the recording. The application goes on.
    void Stop();
    /// In a child that was forked: it shares the ring and has to leave it alone.
    void Abandon() {
        m_records.store(false);
        m_wanted = m_wanted && m_settings.follow;
    }

    /// Room for `size` bytes at the end of what was appended, in one piece; null when the recording
    /// has ended. For less than kPieceLimit. The lock must be held.
    std::uint8_t* Room(std::size_t size) {
        if (m_end + size > m_limit && !MakeRoom(size)) return nullptr;
        return m_ring.At(m_end);
    }
    static constexpr std::size_t kPieceLimit = kRingBytes / 4;
    /// Appends the bytes that now stand in the room: whole records.
    void Commit(std::size_t size) {
        m_end += size;
        m_ring.Head().written.store(m_end, std::memory_order_release);
    }
    /// Appends bytes of a record, of any number. The lock must be held.
    void Append(const std::uint8_t* bytes, std::size_t size);

    /// Where the next record begins in the recording. The lock must be held.
    std::uint64_t End() const { return m_end; }
    /// Has two numbers that were appended there be others in the file.
    void Amend(std::uint64_t place, std::uint32_t first, std::uint32_t second);

    /// Whether what is recorded next is known as of this thread. The lock must be held.
    bool IsThread(std::uint32_t thread) const { return thread == m_thread; }
    void WriteThread(std::uint32_t thread);
    /// The context that is current in the recording, which is played by one thread.
    void BeCurrent(const void* context) { m_current.store(context); }
    bool IsCurrent(const void* context) const { return m_current.load() == context; }
    /// The context that has last used a program. The player takes that program for every context's.
    void UsesProgram(const void* context) { m_programs.store(context, std::memory_order_relaxed); }
    bool TakesProgramOfOther(const void* context) const {
        const void* const last = m_programs.load(std::memory_order_relaxed);
        return last != context && last != nullptr;
    }
    /// Of eglSwapBuffers, in its record: the number of the frame that it ends. The lock must be
    /// held.
    std::uint32_t CountFrame() { return ++m_frames; }
    /// Behind the record of that frame's end. May end the recording, or the process.
    void EndFrame(std::uint32_t frame);
    /// Whether the frame that ends next is one of those whose picture is kept.
    bool WantsPicture() const {
        return m_settings.pictureEvery != 0 && m_frames.load() % m_settings.pictureEvery == 0;
    }

    /// A call that a trace has no place for was made.
    void CountLeftOut(const char* name);

    CShortLock& Lock() { return m_lock; }

private:
    bool MakeRoom(std::size_t size);
    bool WaitForRoom(std::size_t size);

    union UInstance;
    static UInstance s_instance;

    bool m_wanted = false;
    std::atomic<bool> m_records{false};
    CShortLock m_lock;
    std::uint64_t m_end = 0;
    /// Up to there the ring is free, as far as that is known, and its pages are mapped.
    std::uint64_t m_limit = 0;
    std::uint64_t m_mapped = 0;
    std::uint32_t m_thread = 0;
    std::atomic<const void*> m_current{nullptr};
    std::atomic<const void*> m_programs{nullptr};
    std::atomic<std::uint32_t> m_frames{0};
    CRingMapping m_ring;
    SRecordSettings m_settings;
    /// The rendezvous folder.
    const char* m_folder = nullptr;
    std::once_flag m_started;
    std::once_flag m_opened;
    std::mutex m_amendLock;
    std::mutex m_leftOutLock;
};

union CRecorder::UInstance {
    constexpr UInstance() : recorder() {}
    // NOLINTNEXTLINE(modernize-use-equals-default): a union's own would be deleted.
    ~UInstance() {}

    CRecorder recorder;
};

inline CRecorder& CRecorder::Instance() {
    return s_instance.recorder;
}

}  // namespace kestrail::recorder
