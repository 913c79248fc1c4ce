// The command's side of recording: takes what recorded processes leave in their rings and writes it
// into trace files, a file a process.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "recorder/channel/ring.h"

namespace kestrail {

/// What became of one process's recording.
struct SRecording {
    std::filesystem::path file;
    std::string executable;
    pid_t process = 0;
    std::uint64_t frames = 0;
    std::uint64_t calls = 0;
    std::uint64_t bytes = 0;   ///< of the file
    double waitedSeconds = 0;  ///< how long the application waited for the file
    std::string failure;       ///< why the file ends early; empty when it doesn't
    std::vector<SLeftOut> leftOut;
};

class CTraceSink {
public:
    /// `file` gets the first process's recording; those of others get their number before the
    /// suffix, and write over nothing. Makes the rendezvous folder. Throws
    /// std::filesystem::filesystem_error without one.
    CTraceSink(std::filesystem::path file, const SRecordSettings& settings);
    /// Removes the folder.
    ~CTraceSink();
    CTraceSink(const CTraceSink&) = delete;
    CTraceSink& operator=(const CTraceSink&) = delete;

    const std::filesystem::path& Folder() const { return m_folder; }

    /// Takes up new processes and writes what is there. True when there was anything.
    bool Work();
    /// Processes whose recording goes on: neither closed by them nor gone.
    bool AnyAtWork() const { return !m_open.empty(); }
    /// Ends all files, with what has been appended by now. Processes that go on aren't recorded any
    /// more.
    void Finish();
    /// Of all processes, in the order in which they ended.
    const std::vector<SRecording>& Recordings() const { return m_done; }

private:
    struct SOpen;

    void TakeUp(int connection, pid_t process);
    /// The file that the next process gets.
    std::filesystem::path NameFile(pid_t process);
    void End(SOpen& open);

    std::filesystem::path m_file;
    std::filesystem::path m_folder;
    int m_listener = -1;
    std::vector<std::unique_ptr<SOpen>> m_open;
    std::vector<SRecording> m_done;
    bool m_firstTaken = false;
};

}  // namespace kestrail
