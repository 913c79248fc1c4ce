// Runs a target on saved inputs, files or folders of files, where there is no fuzzer to link with.
// A find ends the process as it does under the fuzzer.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void Run(const std::filesystem::path& path) {
    // Before the run: the last name is that of a find.
    std::fprintf(stderr, "%s\n", path.c_str());
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
    // A block of the input's own size: a sanitizer sees a read past it.
    const std::vector<std::uint8_t> bytes(content.begin(), content.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int count, char** arguments) {
    LLVMFuzzerInitialize(&count, &arguments);
    int runs = 0;
    for (int i = 1; i < count; ++i) {
        const std::filesystem::path given = arguments[i];
        if (!std::filesystem::is_directory(given)) {
            Run(given);
            ++runs;
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(given)) {
            if (!entry.is_regular_file()) continue;
            Run(entry.path());
            ++runs;
        }
    }
    std::fprintf(stderr, "%d inputs\n", runs);
    return runs > 0 ? 0 : 1;
}
