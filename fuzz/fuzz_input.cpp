#include "fuzz/fuzz_input.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "base/output.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {

CInputFile::CInputFile()
    : m_file(memfd_create("input", MFD_CLOEXEC)),
      m_path("/proc/self/fd/" + std::to_string(m_file)) {}

CInputFile& CInputFile::With(const std::uint8_t* data, std::size_t size) {
    static CInputFile file;
    const auto length = static_cast<off_t>(size);
    if (ftruncate(file.m_file, length) != 0 || pwrite(file.m_file, data, size, 0) != length) {
        std::abort();
    }
    return file;
}

void Silence() {
    output::Flush();
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

void SetReadBlock(std::uint32_t bytes) {
    CTraceDocument::Instance()->Stream().Memory().Allocate(bytes);
}

}  // namespace kestrail
