// The names of the host libraries, the settings that this program shares with the recording side,
// and the file "kestrail.cfg" that carries both. A player runs on the defaults and reads no file.
#pragma once

#include <cstdint>

#include "base/kstl_string.h"

namespace kestrail {

class CHostConfig {
public:
    /// Gives the defaults, and opens the default libraries for good with their symbols global.
    CHostConfig();

    CKSTLString EglLibraryPath;
    CKSTLString Es1LibraryPath;
    CKSTLString Es2LibraryPath;  ///< holds ES 3.0 as well
    CKSTLString Es3LibraryPath;  ///< takes the place of the ES 2.0 path when a file sets it
};

/// What the recording side shares with a player: one for the process, beside the library paths.
struct SHostSettings {
    CKSTLString traceFile;
    bool recordData = false;
    bool saveFrameBuffer = false;
    std::int32_t startFrame = 0;
    std::int32_t endFrame = 0;
    bool networkControl = false;
    bool configFound = true;
};

SHostSettings& GetHostSettings();

/// The configuration of the process, made on first use.
CHostConfig* GetHostConfig();

/// Reads the file into `config` and the settings. Ends the process when there is no such file.
void ReadConfigFile(CHostConfig& config, const CKSTLString& path);
/// Writes the library paths and a recorder's default settings. False when the file cannot be made.
bool WriteConfigFile(const CHostConfig& config, const CKSTLString& path);

}  // namespace kestrail
