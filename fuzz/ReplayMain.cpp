// Replay driver for builds without libFuzzer: feeds each file named, or every file of each directory
// named, to LLVMFuzzerTestOneInput in sorted order. Fails if a file is unreadable or none ran.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char **argv) {
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i)
        if (!fs::is_directory(argv[i]))
            files.push_back(argv[i]);
        else
            for (const auto &entry : fs::directory_iterator(argv[i]))
                entry.is_regular_file() ? files.push_back(entry.path()) : void();
    std::sort(files.begin(), files.end());
    for (const auto &file : files) {
        std::ifstream in(file, std::ios::binary);
        if (!in)
            return std::fprintf(stderr, "replay: cannot read %s\n", file.c_str()), 2;
        // Exactly the file's size, so that a read past the end is caught.
        const std::vector<uint8_t> data((std::istreambuf_iterator<char>(in)),
                                        std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(data.data(), data.size());
    }
    std::printf("replay: %zu inputs ran\n", files.size());
    return files.empty() ? 2 : 0;
}
