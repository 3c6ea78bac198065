// Feeds the files of the folders named on the command line to one fuzz target, in the place of the fuzzer.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <vector>

#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> FilesIn(const char* folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

int main(int argc, char** argv) try {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const std::filesystem::path& file : FilesIn(argv[i])) {
            std::printf("%s\n", file.filename().c_str()); // the last one shown is the one that failed
            std::fflush(stdout);
            const std::string content = Fuzz::ReadFile(file);
            const auto bytes = Fuzz::Bytes(content);
            const std::vector<uint8_t> exact(bytes.begin(), bytes.end()); // nothing follows its end
            LLVMFuzzerTestOneInput(exact.data(), exact.size());
            ++count;
        }
    }
    std::printf("%zu inputs\n", count);
    return count == 0 ? 1 : 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
