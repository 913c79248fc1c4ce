#include "recorder/channel/trace_sink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <span>
#include <utility>

#include "tracefile/bytes/file_frame.h"

namespace kestrail {
namespace {

namespace fs = std::filesystem;

/// So little that signals and other processes don't wait for long.
constexpr std::uint64_t kPiece = std::uint64_t{4} << 20;

bool IsAlive(std::int32_t process) {
    return kill(process, 0) == 0 || errno != ESRCH;
}

fs::path MakeFolder() {
    std::string name = fs::temp_directory_path() / "kestrail-record-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw fs::filesystem_error("cannot make a folder", name,
                                   std::error_code(errno, std::generic_category()));
    }
    return name;
}

}  // namespace

struct CTraceSink::SOpen {
    CRingMapping ring;
    SRecording recording;
    int file = -1;
    std::uint64_t start = 0;    ///< where the first record stands in the file
    std::uint64_t written = 0;  ///< bytes of records in the file
    std::uint64_t whole = 0;    ///< those of whole records

    ~SOpen() {
        if (file >= 0) close(file);
    }

    /// False when not all of it was taken.
    bool Put(const void* from, std::uint64_t size) {
        const auto* bytes = static_cast<const std::uint8_t*>(from);
        while (size > 0) {
            const ssize_t put = ::write(file, bytes, size);
            if (put < 0 && errno == EINTR) continue;
            if (put <= 0) {
                if (recording.failure.empty()) recording.failure = std::strerror(errno);
                return false;
            }
            bytes += put;
            size -= static_cast<std::uint64_t>(put);
        }
        return true;
    }

    /// The application goes on without being recorded, and the file ends where it is whole.
    void Refuse() {
        ring.Head().refused.store(1);
        std::fprintf(stderr, "kestrail: %s: %s; the recording ends here\n", recording.file.c_str(),
                     recording.failure.c_str());
    }
};

CTraceSink::CTraceSink(fs::path file, const SRecordSettings& settings)
    : m_file(std::move(file)), m_folder(MakeFolder()) {
    std::ofstream out(m_folder / kSettingsName, std::ios::binary);
    out.write(reinterpret_cast<const char*>(&settings), sizeof settings);
}

CTraceSink::~CTraceSink() {
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

void CTraceSink::TakeUp(const fs::path& announced) {
    // The name is the process and its descriptor of the memory.
    int process = 0;
    int descriptor = 0;
    const std::string name = announced.filename();
    if (std::sscanf(name.c_str(), "%d.%d", &process, &descriptor) != 2) return;
    const std::string link =
        "/proc/" + std::to_string(process) + "/fd/" + std::to_string(descriptor);
    auto open = std::make_unique<SOpen>();
    const int memory = ::open(link.c_str(), O_RDWR | O_CLOEXEC);
    const bool mapped = memory >= 0 && open->ring.Map(memory);
    if (memory >= 0) close(memory);
    // Gone: the application waits for that, and closes its descriptor.
    fs::remove(announced);
    if (!mapped || open->ring.Head().magic != SRingHead::kMagic) return;
    // A process that became another program has left its earlier ring.
    for (auto& other : m_open) {
        if (other->recording.process == process) other->ring.Head().closed.store(1);
    }
    SRecording& recording = open->recording;
    recording.process = process;
    recording.executable = open->ring.Head().executable;
    recording.file = m_file;
    if (std::exchange(m_firstTaken, true)) {
        recording.file.replace_extension("." + std::to_string(process) +
                                         m_file.extension().string());
    }
    open->file = ::open(recording.file.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (open->file < 0) recording.failure = std::strerror(errno);
    const std::vector<std::uint8_t> header = TraceFileHeader();
    if (open->file < 0 || !open->Put(header.data(), header.size())) open->Refuse();
    open->start = header.size();
    m_open.push_back(std::move(open));
}

bool CTraceSink::Write(SOpen& open) {
    SRingHead& head = open.ring.Head();
    head.beat.fetch_add(1);
    if (!open.recording.failure.empty()) {
        head.taken.store(head.written.load());
        return false;
    }
    const std::uint64_t whole = head.whole.load(std::memory_order_acquire);
    const std::uint64_t written = head.written.load(std::memory_order_acquire);
    if (written == open.written) return false;
    const std::uint64_t size = std::min(written - open.written, kPiece);
    if (!open.Put(open.ring.At(open.written), size)) {
        open.Refuse();
        return true;
    }
    open.written += size;
    if (whole <= open.written) open.whole = std::max(open.whole, whole);
    head.taken.store(open.written, std::memory_order_release);
    return true;
}

void CTraceSink::End(SOpen& open) {
    while (Write(open)) {
    }
    SRingHead& head = open.ring.Head();
    SRecording& recording = open.recording;
    recording.frames = head.frames.load();
    recording.calls = head.calls.load();
    recording.waitedSeconds = static_cast<double>(head.waitedNs.load()) / 1e9;
    const std::uint32_t names =
        std::min<std::uint32_t>(head.leftOutCount.load(), SRingHead::kLeftOutRoom);
    recording.leftOut.assign(head.leftOut, head.leftOut + names);
    if (open.file >= 0) {
        // A record that the application didn't come to finish goes.
        const auto end = static_cast<off_t>(open.start + open.whole);
        if (ftruncate(open.file, end) == 0 && lseek(open.file, end, SEEK_SET) == end) {
            const std::vector<std::uint8_t> footer = TraceFileFooter();
            open.Put(footer.data(), footer.size());
        }
        const std::uint32_t amended =
            std::min<std::uint32_t>(head.amendedCount.load(), SRingHead::kAmendedRoom);
        for (const SAmended& there : std::span(head.amended, amended)) {
            if (there.place + sizeof there.values > open.whole) continue;
            const auto at = static_cast<off_t>(open.start + there.place);
            if (pwrite(open.file, there.values, sizeof there.values, at) < 0) break;
        }
        struct stat status {};
        if (fstat(open.file, &status) == 0) {
            recording.bytes = static_cast<std::uint64_t>(status.st_size);
        }
    }
    m_done.push_back(std::move(recording));
}

bool CTraceSink::Work() {
    bool any = false;
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_folder, ignored)) {
        if (entry.path().filename() == kSettingsName) continue;
        TakeUp(entry.path());
        any = true;
    }
    for (std::size_t i = 0; i < m_open.size();) {
        SOpen& open = *m_open[i];
        // Looked at before what it appended, so that nothing comes behind.
        const bool over = open.ring.Head().closed.load() != 0 || !IsAlive(open.recording.process);
        const bool wrote = Write(open);
        any = any || wrote;
        if (over && !wrote) {
            End(open);
            m_open.erase(m_open.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            ++i;
        }
    }
    return any;
}

void CTraceSink::Finish() {
    for (auto& open : m_open) End(*open);
    m_open.clear();
}

}  // namespace kestrail
