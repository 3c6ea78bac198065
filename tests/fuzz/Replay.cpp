// The entry of every fuzz target. Without libFuzzer it also has a main that replays the files of a folder.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    FuzzOne({data, size});
    const Platform::BugState& state = *EXP_GetBugState();
    FUZZ_REQUIRE(state.failedCount[0] + state.failedCount[1] == 0);
    return 0;
}

#if !defined(MORVANE_FUZZ)
int main(int, char** argv) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::printf("%s\n", entry.path().filename().c_str()); // the last one shown is the one that failed
        std::fflush(stdout);
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
        const std::vector<uint8_t> exact(content.begin(), content.end()); // the sanitizer watches its end
        LLVMFuzzerTestOneInput(exact.data(), exact.size());
        ++count;
    }
    return count == 0 ? 1 : 0;
}
#endif
