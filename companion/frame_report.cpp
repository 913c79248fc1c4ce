#include "companion/frame_report.h"

#include <filesystem>
#include <nlohmann/json.hpp>

#include "companion/exit_status.h"
#include "pictures/png.h"

namespace kestrail {

/// A frame's line, as text and as JSON.
struct CFrameReport::SLine {
    std::string text;
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
};

std::string CFrameReport::PathIn(const std::string& folder, std::uint32_t frame,
                                 const char* end) const {
    char name[64];
    std::snprintf(name, sizeof name, "frame-%08u%s.png", frame, end);
    return std::filesystem::path(folder) / name;
}

void CFrameReport::TellFailed(const SRenderedFrame& rendered, SLine& line) {
    constexpr std::size_t kTold = 4;
    line.json["failedCalls"] = nlohmann::ordered_json::array();
    std::string text;
    std::size_t told = 0;
    for (const std::uint32_t call : rendered.failed) {
        const char* const name = m_trace.CallAt(call)->call->GetName();
        line.json["failedCalls"].push_back({{"call", call}, {"name", name}});
        if (told++ < kTold) text += ", " + std::to_string(call) + ' ' + name;
    }
    if (told == 0) return;
    if (told > kTold) text += ", and " + std::to_string(told - kTold) + " more";
    std::fprintf(stderr, "kestrail frames: frame %u: failed calls: %s\n", rendered.frame,
                 text.c_str() + 2);
}

void CFrameReport::Write(const SPicture& picture, const std::string& path) {
    const std::string problem = WritePng(picture, path);
    if (problem.empty()) return;
    std::fprintf(stderr, "kestrail frames: %s can't be written: %s\n", path.c_str(),
                 problem.c_str());
    Raise(kExitOutput);
}

void CFrameReport::CompareFrame(const SRenderedFrame& rendered, SLine& line) {
    SPicture wanted;
    std::string problem = "nothing to compare with";
    if (m_outputs.compareWith->empty()) {
        wanted = PictureInTrace(m_trace, rendered.frame);
    } else {
        const std::string path = PathIn(*m_outputs.compareWith, rendered.frame, "");
        problem = ReadPng(path, wanted);
        if (!problem.empty()) {
            problem = path + ": " + problem;
            Raise(kExitFound);
        }
    }
    if (wanted.pixels.empty()) {
        line.text = problem;
        line.json["comparison"] = nullptr;
        return;
    }
    ++m_compared;
    const SDifference found = Compare(wanted, rendered.picture, m_outputs.threshold);
    line.json["comparison"] = {{"equal", found.Equal()},
                               {"sameSize", found.sized},
                               {"pixels", found.pixels},
                               {"largest", found.largest}};
    char text[128];
    if (!found.sized) {
        std::snprintf(text, sizeof text, "%ux%u instead of %ux%u", rendered.picture.width,
                      rendered.picture.height, wanted.width, wanted.height);
    } else if (found.pixels != 0) {
        std::snprintf(text, sizeof text, "%zu pixels differ, by up to %d", found.pixels,
                      found.largest);
    } else if (found.largest != 0) {
        std::snprintf(text, sizeof text, "equal but for %d", found.largest);
    } else {
        std::snprintf(text, sizeof text, "equal");
    }
    line.text = text;
    if (found.Equal()) return;
    Raise(kExitFound);
    if (!m_outputs.folder.empty() && found.sized) {
        const std::string path = PathIn(m_outputs.folder, rendered.frame, "-difference");
        Write(PictureOfDifference(wanted, rendered.picture), path);
        line.json["comparison"]["difference"] = path;
    }
}

void CFrameReport::Take(const SRenderedFrame& rendered) {
    const SPicture& picture = rendered.picture;
    SLine line;
    line.json["frame"] = rendered.frame;
    line.json["width"] = picture.width;
    line.json["height"] = picture.height;
    TellFailed(rendered, line);
    if (picture.pixels.empty()) {
        std::fprintf(stderr, "kestrail frames: frame %u: no window could be read at its end\n",
                     rendered.frame);
        Raise(kExitFound);
    } else {
        char sum[16];
        std::snprintf(sum, sizeof sum, "%08x", ChecksumOf(picture));
        line.json["crc32"] = sum;
        if (m_outputs.compareWith) CompareFrame(rendered, line);
        std::string path;
        if (!m_outputs.folder.empty()) {
            path = PathIn(m_outputs.folder, rendered.frame, "");
            line.json["file"] = path;
            const bool scaled = m_outputs.width != 0;
            Write(scaled ? FitInto(picture, m_outputs.width, m_outputs.height) : picture, path);
        }
        if (m_outputs.compareWith) {
            line.text = "frame " + std::to_string(rendered.frame) + ": " + line.text;
        } else if (m_outputs.checksums) {
            line.text = std::to_string(rendered.frame) + ' ' + std::to_string(picture.width) + 'x' +
                        std::to_string(picture.height) + ' ' + sum;
        } else {
            line.text = path;
        }
    }
    if (m_outputs.json) {
        std::fprintf(m_lines, "%s\n", line.json.dump().c_str());
    } else if (!line.text.empty()) {
        std::fprintf(m_lines, "%s\n", line.text.c_str());
    }
}

}  // namespace kestrail
