#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

// A target is one file that defines FuzzOne, which takes any bytes. A property that does not hold, a failed
// assertion of the library and whatever a sanitizer sees end the process: that is a finding.
void FuzzOne(std::span<const uint8_t> input);

#define FUZZ_REQUIRE(condition)                                                                 \
    do {                                                                                        \
        if (!(condition)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                       \
        }                                                                                       \
    } while (false)

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    FuzzOne({data, size});
    const Platform::BugState& state = *EXP_GetBugState();
    FUZZ_REQUIRE(state.failedCount[0] + state.failedCount[1] == 0);
    return 0;
}

namespace Fuzz {

inline std::string_view Text(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

inline std::span<const uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

} // namespace Fuzz
