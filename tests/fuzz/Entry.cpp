#include <cstddef>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "tests/fuzz/Fuzz.h"

namespace {

// Failed checks of either kind so far.
uint32_t FailedChecks() {
    const Platform::BugState& state = *EXP_GetBugState();
    return state.failedCount[0] + state.failedCount[1];
}

} // namespace

// The fuzzer's entry, under the name and linkage that it asks for.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    FuzzOne({data, size});
    FUZZ_REQUIRE(FailedChecks() == 0);
    return 0;
}
