#include "recorder/channel/trace_sink.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <utility>

#include "recorder/channel/meeting.h"
#include "tracefile/bytes/file_frame.h"

namespace kestrail {
namespace {

namespace fs = std::filesystem;

/// So little that signals and other processes don't wait for long.
constexpr std::uint64_t kPiece = std::uint64_t{4} << 20;
/// How far in front of the application there is memory for it.
constexpr std::uint64_t kAhead = std::uint64_t{16} << 20;
/// A record's size and identifier, which stand before its payload.
constexpr std::uint64_t kRecordHead = sizeof(std::uint32_t) + sizeof(std::uint16_t);

fs::path MakeFolder() {
    std::string name = fs::temp_directory_path() / "kestrail-record-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw fs::filesystem_error("cannot make a folder", name,
                                   std::error_code(errno, std::generic_category()));
    }
    return name;
}

std::string NameOf(pid_t process) {
    std::error_code ignored;
    return fs::read_symlink("/proc/" + std::to_string(process) + "/exe", ignored).filename();
}

/// The whole records up to some place in the recording.
struct SWhole {
    std::uint64_t end = 0;
    std::uint64_t calls = 0;
    std::uint64_t frames = 0;
    std::uint64_t next = 0;  ///< end of the record behind them; `end` while that isn't known
    std::uint16_t id = 0;    ///< of that record

    /// Goes on to the last record that ends by `limit`. The ring can be read up to `available`.
    void Find(const CRingMapping& ring, std::uint64_t limit, std::uint64_t available);
};

void SWhole::Find(const CRingMapping& ring, std::uint64_t limit, std::uint64_t available) {
    constexpr std::uint16_t kLastOfFile = 5;
    constexpr std::uint16_t kSwapBuffers = 1022;
    while (true) {
        if (next == end) {
            if (end + kRecordHead > available) return;
            std::uint32_t size = 0;
            std::memcpy(&size, ring.At(end), sizeof size);
            std::memcpy(&id, ring.At(end) + sizeof size, sizeof id);
            next = end + kRecordHead + size;
        }
        if (next > limit) return;
        end = next;
        calls += id > kLastOfFile ? 1 : 0;
        frames += id == kSwapBuffers ? 1 : 0;
    }
}

}  // namespace

struct CTraceSink::SOpen {
    CRingMapping ring;
    SRecording recording;
    int file = -1;
    int life = -1;  ///< can be read when the process has ended
    const std::vector<std::uint8_t> footer = TraceFileFooter();
    std::uint64_t start = 0;    ///< where the first record stands in the file
    std::uint64_t written = 0;  ///< bytes of records in the file
    SWhole whole;
    std::uint32_t amended = 0;
    std::uint64_t prepared = 0;  ///< bytes of the ring that have memory

    ~SOpen() {
        for (const int descriptor : {file, life}) {
            if (descriptor >= 0) close(descriptor);
        }
        if (ring.Mapped()) pthread_mutex_unlock(&ring.Head().served);
    }

    /// Makes the ring, held as one that is served.
    bool Serve(SRingMemory& memory);
    void Begin(fs::path name);
    bool IsAlive() const;
    /// True when it wrote anything.
    bool Write();
    /// Gets memory before the application comes to it, which would wait for it. True when it did.
    bool Prepare();
    /// Ends the file behind its last whole record.
    void Finish();

private:
    std::uint64_t Put(std::uint64_t size, bool withFooter);
    void Amend();
    void Refuse(const char* reason);
};

bool CTraceSink::SOpen::Serve(SRingMemory& memory) {
    if (!ring.Create(memory)) return false;
    pthread_mutexattr_t kind;
    pthread_mutexattr_init(&kind);
    pthread_mutexattr_setpshared(&kind, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&kind, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_init(&ring.Head().served, &kind);
    pthread_mutexattr_destroy(&kind);
    return pthread_mutex_lock(&ring.Head().served) == 0;
}

void CTraceSink::SOpen::Begin(fs::path name) {
    recording.file = std::move(name);
    file = open(recording.file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    std::vector<std::uint8_t> empty = TraceFileHeader();
    start = empty.size();
    empty.insert(empty.end(), footer.begin(), footer.end());
    if (file < 0 || write(file, empty.data(), empty.size()) < 0) Refuse(std::strerror(errno));
}

bool CTraceSink::SOpen::IsAlive() const {
    // A process that has ended keeps its number until its parent asks for it.
    pollfd end = {life, POLLIN, 0};
    if (life >= 0) return poll(&end, 1, 0) == 0;
    return kill(recording.process, 0) == 0 || errno != ESRCH;
}

/// How many bytes of the ring the file took.
std::uint64_t CTraceSink::SOpen::Put(std::uint64_t size, bool withFooter) {
    std::uint64_t done = 0;
    while (done < size) {
        const std::uint64_t position = written + done;
        const iovec pieces[] = {{ring.At(position), size - done},
                                {const_cast<std::uint8_t*>(footer.data()), footer.size()}};
        const ssize_t put =
            pwritev(file, pieces, withFooter ? 2 : 1, static_cast<off_t>(start + position));
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) {
            Refuse(std::strerror(errno));
            break;
        }
        done += static_cast<std::uint64_t>(put);
    }
    return std::min(done, size);
}

bool CTraceSink::SOpen::Write() {
    SRingHead& head = ring.Head();
    const std::uint64_t available = head.written.load(std::memory_order_acquire);
    if (available == written || !recording.failure.empty()) return false;
    if (available - written > kRingBytes) {
        Refuse("the program has written over the memory of the recording");
        return false;
    }
    const SWhole before = whole;
    whole.Find(ring, std::min(available, written + kPiece), available);
    // Ends with a record where it can: the file is one, whatever becomes of this process.
    const bool records = whole.end > written;
    const std::uint64_t size =
        records ? whole.end - written : std::min(available - written, kPiece);
    const std::uint64_t put = Put(size, records);
    if (put < size) {
        // A footer has room where one stood before, and where as much was written already.
        whole = before;
        if (put > footer.size()) whole.Find(ring, written + put - footer.size(), available);
        return false;
    }
    written += size;
    head.taken.store(written, std::memory_order_release);
    Amend();
    return true;
}

bool CTraceSink::SOpen::Prepare() {
    constexpr std::uint64_t kStep = std::uint64_t{1} << 20;
    if (prepared >= std::min<std::uint64_t>(ring.Head().written + kAhead, kRingBytes)) return false;
    madvise(ring.At(prepared), kStep, MADV_POPULATE_WRITE);
    prepared += kStep;
    return true;
}

void CTraceSink::SOpen::Amend() {
    const SRingHead& head = ring.Head();
    const std::uint32_t count =
        std::min<std::uint32_t>(head.amendedCount.load(), SRingHead::kAmendedRoom);
    for (; amended < count; ++amended) {
        const SAmended& there = head.amended[amended];
        if (there.place + sizeof there.values > written) return;
        const auto at = static_cast<off_t>(start + there.place);
        if (pwrite(file, there.values, sizeof there.values, at) < 0) return;
    }
}

void CTraceSink::SOpen::Refuse(const char* reason) {
    recording.failure = reason;
    ring.Head().refused.store(1);
    std::fprintf(stderr, "kestrail: %s: %s; the recording ends here\n", recording.file.c_str(),
                 reason);
}

void CTraceSink::SOpen::Finish() {
    while (Write()) {
    }
    SRingHead& head = ring.Head();
    head.refused.store(1);
    recording.frames = whole.frames;
    recording.calls = whole.calls;
    recording.waitedSeconds = static_cast<double>(head.waitedNs.load()) / 1e9;
    const std::uint32_t names =
        std::min<std::uint32_t>(head.leftOutCount.load(), SRingHead::kLeftOutRoom);
    recording.leftOut.assign(head.leftOut, head.leftOut + names);
    if (file < 0) return;
    Amend();
    const auto end = static_cast<off_t>(start + whole.end);
    const bool ragged = whole.end != written || !recording.failure.empty();
    if (ragged && ftruncate(file, end) == 0 &&
        pwrite(file, footer.data(), footer.size(), end) < 0 && recording.failure.empty()) {
        Refuse(std::strerror(errno));
    }
    struct stat status {};
    if (fstat(file, &status) == 0) recording.bytes = static_cast<std::uint64_t>(status.st_size);
}

CTraceSink::CTraceSink(fs::path file, const SRecordSettings& settings)
    : m_file(std::move(file)), m_folder(MakeFolder()), m_listener(ListenIn(m_folder.c_str())) {
    std::ofstream out(m_folder / kSettingsName, std::ios::binary);
    out.write(reinterpret_cast<const char*>(&settings), sizeof settings);
}

CTraceSink::~CTraceSink() {
    if (m_listener >= 0) close(m_listener);
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

fs::path CTraceSink::NameFile(pid_t process) {
    if (!std::exchange(m_firstTaken, true)) return m_file;
    const std::string stem = m_file.stem().string() + "." + std::to_string(process);
    fs::path file = m_file;
    file.replace_filename(stem + m_file.extension().string());
    for (int other = 2; fs::exists(file); ++other) {
        file.replace_filename(stem + "-" + std::to_string(other) + m_file.extension().string());
    }
    return file;
}

void CTraceSink::TakeUp(int connection, pid_t process) {
    auto open = std::make_unique<SOpen>();
    SRingMemory memory;
    const bool served = open->Serve(memory);
    if (served) HandOut(connection, memory);
    if (memory.descriptor >= 0) close(memory.descriptor);
    if (!served) return;
    // A process that became another program has left its earlier ring.
    for (auto& other : m_open) {
        if (other->recording.process == process) other->ring.Head().closed.store(1);
    }
    open->life = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    open->recording.process = process;
    open->recording.executable = NameOf(process);
    open->Begin(NameFile(process));
    m_open.push_back(std::move(open));
}

bool CTraceSink::Work() {
    bool any = false;
    pid_t process = 0;
    for (int comer = 0; (comer = NextComer(m_listener, process)) >= 0; any = true) {
        TakeUp(comer, process);
        close(comer);
    }
    for (std::size_t i = 0; i < m_open.size();) {
        SOpen& open = *m_open[i];
        // Looked at before what it appended, so that nothing comes behind.
        const bool over = open.ring.Head().closed.load() != 0 || !open.IsAlive();
        const bool wrote = open.Write();
        any = open.Prepare() || wrote || any;
        if (over && !wrote) {
            End(open);
            m_open.erase(m_open.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            ++i;
        }
    }
    return any;
}

void CTraceSink::End(SOpen& open) {
    open.Finish();
    m_done.push_back(std::move(open.recording));
}

void CTraceSink::Finish() {
    for (auto& open : m_open) End(*open);
    m_open.clear();
}

}  // namespace kestrail
