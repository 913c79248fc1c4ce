#include "recorder/library/recorder.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

#include "recorder/channel/meeting.h"

namespace kestrail::recorder {
namespace {

constexpr long kMillisecond = 1'000'000;

/// Unlike nanosleep never the end of a thread that is cancelled.
void Sleep(long nanoseconds) {
    const timespec pause = {0, nanoseconds};
    syscall(SYS_nanosleep, &pause, nullptr);
}

std::uint64_t Now() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000u +
           static_cast<std::uint64_t>(now.tv_nsec);
}

std::string ExecutableName() {
    char path[4096];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    if (length <= 0) return {};
    const std::string_view whole(path, static_cast<std::size_t>(length));
    return std::string(whole.substr(whole.find_last_of('/') + 1));
}

bool ReadSettings(const char* folder, SRecordSettings& settings) {
    const std::string path = std::string(folder) + "/" + kSettingsName;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool read = ::read(file, &settings, sizeof settings) == ssize_t{sizeof settings};
    close(file);
    return read && settings.version == SRecordSettings::kFileVersion;
}

/// Leaves the environment as it was without us: children run as if nothing were recorded. In its
/// place, as the main function is given it.
void LeaveEnvironment() {
    unsetenv(kFolderVariable);
    char* const preload = getenv("LD_PRELOAD");
    Dl_info own{};
    if (preload == nullptr || dladdr(&kFolderVariable, &own) == 0) return;
    const std::string_view path = own.dli_fname;
    char* const at = std::strstr(preload, own.dli_fname);
    if (at == nullptr) return;
    char* const rest = at + path.size() + (at[path.size()] == ':' ? 1 : 0);
    std::memmove(at, rest, std::strlen(rest) + 1);
    if (*preload == '\0') unsetenv("LD_PRELOAD");
}

/// Whether the command is there, which takes what is appended.
bool IsServed(SRingHead& head) {
    const int held = pthread_mutex_trylock(&head.served);
    if (held == 0 || held == EOWNERDEAD) pthread_mutex_unlock(&head.served);
    return held == EBUSY;
}

}  // namespace

bool CShortLock::Wait(std::uint32_t thread) {
    for (int tries = 0;; ++tries) {
        std::uint32_t holder = 0;
        if (m_holder.compare_exchange_strong(holder, thread, std::memory_order_acquire))
            return true;
        if (tries < 100) continue;
        if (tries < 200) {
            sched_yield();
        } else {
            Sleep(kMillisecond / 20);
        }
    }
}

constinit CRecorder::UInstance CRecorder::s_instance;

void CRecorder::Start() {
    std::call_once(m_started, [this] {
        const char* const folder = getenv(kFolderVariable);
        if (folder == nullptr || !ReadSettings(folder, m_settings)) return;
        const std::string_view only = m_settings.only;
        m_wanted = only.empty() || only == ExecutableName();
        m_folder = strdup(folder);
        pthread_atfork(nullptr, nullptr, [] { Instance().Abandon(); });
        if (!m_settings.follow) LeaveEnvironment();
    });
}

void CRecorder::Open() {
    // Libraries that were loaded before this one may call as they are.
    Start();
    if (!m_wanted) return;
    std::call_once(m_opened, [this] {
        if (TakeRing(m_folder, m_ring)) {
            m_records.store(true);
        } else {
            std::fprintf(stderr,
                         "kestrail: the command that records is gone or has no memory; "
                         "nothing is recorded\n");
        }
    });
}

void CRecorder::Stop() {
    if (m_records.exchange(false)) m_ring.Head().closed.store(1);
}

bool CRecorder::MakeRoom(std::size_t size) {
    if (!WaitForRoom(size)) return false;
    m_limit = m_ring.Head().taken.load(std::memory_order_acquire) + kRingBytes;
    if (m_mapped >= kRingBytes) return true;
    // Many pages at once take a fraction of what they take one by one.
    constexpr std::uint64_t kStep = std::uint64_t{1} << 19;
    const std::uint64_t wanted = (m_end + size + kStep - 1) / kStep * kStep;
    if (wanted > m_mapped) {
        madvise(m_ring.At(m_mapped), wanted - m_mapped, MADV_POPULATE_WRITE);
        m_mapped = wanted;
    }
    m_limit = std::min(m_limit, m_mapped);
    return true;
}

bool CRecorder::WaitForRoom(std::size_t size) {
    SRingHead& head = m_ring.Head();
    std::uint64_t start = 0;
    while (true) {
        if (head.refused.load() != 0 || !IsServed(head)) m_records.store(false);
        if (!m_records.load()) return false;
        if (m_end + size - head.taken.load(std::memory_order_acquire) <= kRingBytes) break;
        if (start == 0) start = Now();
        Sleep(kMillisecond / 10);
    }
    if (start != 0) head.waitedNs.fetch_add(Now() - start);
    return true;
}

void CRecorder::Append(const std::uint8_t* bytes, std::size_t size) {
    for (std::size_t done = 0; done < size;) {
        const std::size_t piece = std::min(size - done, kPieceLimit);
        std::uint8_t* const room = Room(piece);
        if (room == nullptr) return;
        std::memcpy(room, bytes + done, piece);
        Commit(piece);
        done += piece;
    }
}

void CRecorder::WriteThread(std::uint32_t thread) {
    constexpr std::uint16_t kThreadRecord = 1;
    const std::uint32_t size = sizeof(std::uint64_t);
    const std::uint64_t identifier = thread;
    std::uint8_t* const room = Room(sizeof size + sizeof kThreadRecord + size);
    if (room == nullptr) return;
    std::memcpy(room, &size, sizeof size);
    std::memcpy(room + sizeof size, &kThreadRecord, sizeof kThreadRecord);
    std::memcpy(room + sizeof size + sizeof kThreadRecord, &identifier, sizeof identifier);
    Commit(sizeof size + sizeof kThreadRecord + size);
    m_thread = thread;
}

void CRecorder::EndFrame(std::uint32_t frame) {
    if (m_settings.lastFrame == 0 || frame < m_settings.lastFrame) return;
    Stop();
    if (m_settings.exitBehindLast) _exit(0);
}

void CRecorder::Amend(std::uint64_t place, std::uint32_t first, std::uint32_t second) {
    const std::lock_guard held(m_amendLock);
    SRingHead& head = m_ring.Head();
    const std::uint32_t count = head.amendedCount.load();
    if (count == SRingHead::kAmendedRoom) return;
    head.amended[count] = {place, {first, second}};
    head.amendedCount.store(count + 1);
}

void CRecorder::CountLeftOut(const char* name) {
    if (!Records()) return;
    const std::lock_guard held(m_leftOutLock);
    SRingHead& head = m_ring.Head();
    const std::uint32_t count = head.leftOutCount.load();
    SLeftOut* const end = head.leftOut + count;
    SLeftOut* const known = std::find_if(
        head.leftOut, end, [&](const SLeftOut& call) { return std::strcmp(call.name, name) == 0; });
    if (known != end) {
        ++known->count;
    } else if (count < SRingHead::kLeftOutRoom) {
        std::snprintf(known->name, sizeof known->name, "%s", name);
        known->count = 1;
        head.leftOutCount.store(count + 1);
    }
}

}  // namespace kestrail::recorder
