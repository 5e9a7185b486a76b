// Replay driver for builds without libFuzzer: feeds each file named on the
// command line, or every regular file of each directory named, to
// LLVMFuzzerTestOneInput, in sorted order. Fails if no file was run; a finding
// aborts inside the target.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

void runFile(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // A copy of exactly the file's size, so that a read past the end is caught.
    std::vector<uint8_t> data(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(data.data(), data.size());
}

} // namespace

int main(int argc, char **argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path arg(argv[i]);
        if (std::filesystem::is_directory(arg)) {
            for (const auto &entry : std::filesystem::directory_iterator(arg))
                if (entry.is_regular_file())
                    files.push_back(entry.path());
        } else if (std::filesystem::is_regular_file(arg)) {
            files.push_back(arg);
        } else {
            std::fprintf(stderr, "replay: no such file or directory: %s\n", argv[i]);
            return 2;
        }
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        std::fprintf(stderr, "replay: no input files\n");
        return 2;
    }
    for (const auto &file : files)
        runFile(file);
    std::printf("replay: %zu inputs ran\n", files.size());
    return 0;
}
