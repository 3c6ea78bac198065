// What others wrote reaches a terminal without anything that it obeys, and UTF-8 stays UTF-8.
#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"
#include "Tools/PackageTool/src/Console.h"
#include "tests/fuzz/Fuzz.h"

void FuzzOne(std::span<const uint8_t> input) {
    const std::string printable = Console::Printable(Fuzz::Text(input));
    FUZZ_REQUIRE(Console::Printable(printable) == printable);
    for (const char c : printable) {
        FUZZ_REQUIRE(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
    }
    std::wstring wide;
    if (Platform::ConvertString(Fuzz::Text(input), wide) != Platform::ConvertString_Done) {
        return;
    }
    FUZZ_REQUIRE(Platform::ConvertString(std::string_view(printable), wide) == Platform::ConvertString_Done);
    for (const wchar_t c : wide) {
        FUZZ_REQUIRE(c < 0x80 || c > 0x9F);
        FUZZ_REQUIRE(c != 0x202E && c != 0x2066 && c != 0x61C); // the rest of the line would run backwards
    }
}
