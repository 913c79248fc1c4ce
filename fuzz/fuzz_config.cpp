// Reads an input as a configuration file, and writes what was read.
#include "fuzz/fuzz_input.h"
#include "host/host_config.h"

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    kestrail::Silence();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kestrail::CHostConfig config = *kestrail::GetHostConfig();
    kestrail::GetHostSettings() = {};
    kestrail::ReadConfigFile(config, kestrail::CInputFile::With(data, size).Path());
    kestrail::WriteConfigFile(config, "/dev/null");
    return 0;
}
