// Work that processes share.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <functional>

namespace kestrail {

/// Numbers that processes count together.
class CSharedCounts {
public:
    struct SCounts {
        std::atomic<std::uint32_t> done = 0;
        std::atomic<std::uint32_t> compared = 0;
    };

    CSharedCounts();
    ~CSharedCounts();
    CSharedCounts(const CSharedCounts&) = delete;
    CSharedCounts& operator=(const CSharedCounts&) = delete;
    SCounts* operator->() const { return m_counts; }

private:
    SCounts* m_counts;
};

/// Does part `number`, from 0, writes lines and counts what it has done. Returns an exit status.
using Job = std::function<int(std::size_t number, std::FILE* lines)>;

/// Runs jobs, a process each, so that a driver that dies takes none with it but its own, and writes
/// their lines one job after the other. While it lasts, a terminal on standard error is told how
/// much of `total` they have counted as done. Returns the largest status, with a message for each
/// job that dies or can't write.
int RunJobs(std::size_t jobs, const Job& job, std::FILE* lines, const CSharedCounts& counts,
            std::uint32_t total);

}  // namespace kestrail
