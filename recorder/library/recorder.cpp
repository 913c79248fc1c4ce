#include "recorder/library/recorder.h"

#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

namespace kestrail::recorder {
namespace {

constexpr long kMillisecond = 1'000'000;

void Sleep(long nanoseconds) {
    const timespec pause = {0, nanoseconds};
    nanosleep(&pause, nullptr);
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

/// Leaves the environment as it was without us: children run as if nothing were recorded.
void LeaveEnvironment() {
    unsetenv(kFolderVariable);
    const char* const preload = getenv("LD_PRELOAD");
    if (preload == nullptr) return;
    // The command puts its library first.
    const std::string_view libraries = preload;
    const std::size_t first = libraries.find(':');
    if (first == std::string_view::npos) {
        unsetenv("LD_PRELOAD");
    } else {
        setenv("LD_PRELOAD", std::string(libraries.substr(first + 1)).c_str(), 1);
    }
}

}  // namespace

void CShortLock::Wait() {
    for (int tries = 0; m_taken.exchange(true, std::memory_order_acquire); ++tries) {
        if (tries < 100) continue;
        if (tries < 200) {
            sched_yield();
        } else {
            Sleep(kMillisecond / 20);
        }
    }
}

constinit CRecorder CRecorder::s_instance;

void CRecorder::Start() {
    const char* const folder = getenv(kFolderVariable);
    if (folder == nullptr || !ReadSettings(folder, m_settings)) return;
    const std::string_view only = m_settings.only;
    m_wanted = only.empty() || only == ExecutableName();
    m_folder = strdup(folder);
    pthread_atfork(nullptr, nullptr, [] { s_instance.Abandon(); });
    if (!m_settings.follow) LeaveEnvironment();
}

void CRecorder::Open() {
    if (!m_wanted) return;
    std::call_once(m_opened, [this] {
        const int memory = CRingMapping::Create();
        if (memory < 0 || !m_ring.Map(memory)) {
            std::fprintf(stderr, "kestrail: no memory to record with; nothing is recorded\n");
            if (memory >= 0) close(memory);
            return;
        }
        SRingHead& head = m_ring.Head();
        head.process = getpid();
        std::snprintf(head.executable, sizeof head.executable, "%s", ExecutableName().c_str());
        head.magic = SRingHead::kMagic;
        const std::string announced =
            std::string(m_folder) + "/" + std::to_string(getpid()) + "." + std::to_string(memory);
        const int file = open(announced.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file >= 0) close(file);
        // The command looks every other millisecond, and removes the file when it has the memory.
        constexpr int kPatience = 5000;
        int waited = 0;
        while (file >= 0 && access(announced.c_str(), F_OK) == 0 && waited < kPatience) {
            Sleep(kMillisecond);
            ++waited;
        }
        close(memory);
        if (file < 0 || waited == kPatience) {
            std::fprintf(stderr,
                         "kestrail: the command that records is gone; nothing is recorded\n");
            return;
        }
        m_records.store(true);
    });
}

void CRecorder::Stop() {
    if (m_records.exchange(false)) m_ring.Head().closed.store(1);
}

bool CRecorder::WaitForRoom(std::size_t size) {
    SRingHead& head = m_ring.Head();
    const std::uint64_t start = Now();
    std::uint32_t beat = head.beat.load();
    std::uint64_t beatTime = start;
    bool waited = false;
    while (true) {
        if (head.refused.load() != 0) m_records.store(false);
        if (!m_records.load()) return false;
        m_taken = head.taken.load(std::memory_order_acquire);
        if (m_end + size - m_taken <= kRingBytes) break;
        waited = true;
        Sleep(kMillisecond / 10);
        const std::uint64_t now = Now();
        if (head.beat.load() != beat) {
            beat = head.beat.load();
            beatTime = now;
        } else if (now - beatTime > 1'000'000'000u && kill(m_settings.command, 0) != 0 &&
                   errno == ESRCH) {
            // Whoever was to write the file is gone.
            m_records.store(false);
            return false;
        }
    }
    if (waited) head.waitedNs.fetch_add(Now() - start);
    return true;
}

void CRecorder::Append(const std::uint8_t* record, std::size_t size) {
    SRingHead& head = m_ring.Head();
    for (std::size_t done = 0; done < size;) {
        const std::size_t piece = std::min(size - done, kPieceLimit);
        std::uint8_t* const room = Room(piece);
        if (room == nullptr) return;
        std::memcpy(room, record + done, piece);
        m_end += piece;
        head.written.store(m_end, std::memory_order_release);
        done += piece;
    }
    head.whole.store(m_end, std::memory_order_release);
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

void CRecorder::CountFrame() {
    m_ring.Head().frames.store(++m_frames, std::memory_order_relaxed);
    if (m_settings.lastFrame == 0 || m_frames < m_settings.lastFrame) return;
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
