// What converts to wide text converts back to the same bytes, and what others wrote reaches a terminal
// without anything that the terminal obeys.
#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"
#include "Tools/PackageTool/src/Console.h"
#include "tests/fuzz/Fuzz.h"

void FuzzOne(std::span<const uint8_t> input) {
    const std::string_view text = Fuzz::Text(input);
    const std::string printable = Console::Printable(text);
    for (const char c : printable) {
        FUZZ_REQUIRE(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
    }
    std::wstring wide;
    std::string again;
    if (Platform::ConvertString(text, wide) != Platform::ConvertString_Done) {
        FUZZ_REQUIRE(wide.empty());
        return;
    }
    FUZZ_REQUIRE(Platform::ConvertString(wide, again) == Platform::ConvertString_Done && again == text);
    FUZZ_REQUIRE(Platform::ConvertString(printable, wide) == Platform::ConvertString_Done);
    for (const wchar_t c : wide) {
        FUZZ_REQUIRE((c < 0x80 || c > 0x9F) && c != 0x202E && c != 0x2066 && c != 0x61C);
    }
}
