// What `kestrail frames` makes of each frame that was rendered: files, comparisons, lines.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "playback/frame_renderer.h"

namespace kestrail {

struct SFrameOutputs {
    std::string folder;  ///< of pictures; empty for none
    /// The largest size of those; 0 for the frame's own.
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    /// Compare with the pictures in this folder, or with those in the trace if it is empty.
    std::optional<std::string> compareWith;
    int threshold = 0;
    bool checksums = false;
    bool json = false;
};

class CFrameReport {
public:
    /// Lines go to `lines`, messages to standard error.
    CFrameReport(CFrameStore& trace, const SFrameOutputs& outputs, std::FILE* lines)
        : m_trace(trace), m_outputs(outputs), m_lines(lines) {}

    void Take(const SRenderedFrame& rendered);

    /// An exit status.
    int Status() const { return m_status; }
    std::uint32_t Compared() const { return m_compared; }

private:
    struct SLine;
    void Raise(int status) { m_status = m_status < status ? status : m_status; }
    void TellFailed(const SRenderedFrame& rendered, SLine& line);
    void Write(const SPicture& picture, const std::string& path);
    void CompareFrame(const SRenderedFrame& rendered, SLine& line);
    std::string PathIn(const std::string& folder, std::uint32_t frame, const char* end) const;

    CFrameStore& m_trace;
    const SFrameOutputs& m_outputs;
    std::FILE* m_lines;
    int m_status = 0;
    std::uint32_t m_compared = 0;
};

}  // namespace kestrail
