// Where traces stand that were made elsewhere, for what looks at whole ones.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/trace_builder.h"

namespace kestrail {

/// The recordings don't belong to this repository: they may be missing.
inline std::string RecordingsFolder() {
    const char* const folder = std::getenv("KESTRAIL_TRACES");
    return folder != nullptr ? folder : KESTRAIL_TRACES_FOLDER;
}

/// All files in a folder and those below it, sorted; of all kinds, unless an extension is given.
inline std::vector<std::filesystem::path> FilesIn(const std::string& folder,
                                                  const std::string& extension = "") {
    std::vector<std::filesystem::path> files;
    std::error_code none;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, none)) {
        const std::filesystem::path& path = entry.path();
        const bool meant = extension.empty() || path.extension() == extension;
        if (entry.is_regular_file() && meant) files.push_back(path);
    }
    std::sort(files.begin(), files.end());
    return files;
}

inline Bytes ContentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

/// The samples and the recordings.
inline std::vector<std::filesystem::path> AllTraces() {
    std::vector<std::filesystem::path> traces = FilesIn(KESTRAIL_SAMPLES, ".kstl");
    for (const auto& path : FilesIn(RecordingsFolder(), ".kstl")) traces.push_back(path);
    return traces;
}

}  // namespace kestrail
