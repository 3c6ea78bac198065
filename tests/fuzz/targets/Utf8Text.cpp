// What converts comes back from the wide form to the byte; what does not leaves nothing.
#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"
#include "tests/fuzz/Fuzz.h"

void FuzzOne(std::span<const uint8_t> input) {
    const std::string_view text = Fuzz::Text(input);
    std::wstring wide;
    std::string again;
    if (Platform::ConvertString(text, wide) == Platform::ConvertString_Done) {
        FUZZ_REQUIRE(Platform::ConvertString(wide, again) == Platform::ConvertString_Done && again == text);
    } else {
        FUZZ_REQUIRE(wide.empty());
    }
}
