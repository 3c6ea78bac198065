// All conversions agree on what is UTF-8, and every text comes back from the wide form to the byte.
#include "Libs/Tarnel/Platform/src/Common/Platform_ConvertString.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Utf8.h"
#include "tests/fuzz/Fuzz.h"

namespace {

// The bytes before the first that is no character.
std::size_t WellFormedLength(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        char32_t codePoint = 0;
        std::size_t length = 0;
        if (Platform::DecodeUtf8(text.substr(at), codePoint, length) != Platform::Utf8Step::Done) {
            break;
        }
        char again[4];
        FUZZ_REQUIRE(length >= 1 && length <= 4 && at + length <= text.size());
        FUZZ_REQUIRE(Platform::EncodeUtf8(codePoint, again) == length);
        FUZZ_REQUIRE(text.substr(at, length) == std::string_view(again, length));
        at += length;
    }
    return at;
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    const std::string_view text = Fuzz::Text(input);
    const bool isWellFormed = WellFormedLength(text) == text.size();

    std::wstring wide;
    std::wstring converted;
    const auto conversion = Platform::ConvertString(text, converted);
    FUZZ_REQUIRE((Platform::Utf8ToWide(text, wide) == Platform::EncodingOutcome::Done) == isWellFormed);
    FUZZ_REQUIRE((conversion == Platform::ConvertString_Done) == isWellFormed);
    if (isWellFormed) {
        std::string again;
        FUZZ_REQUIRE(converted == wide);
        FUZZ_REQUIRE(Platform::WideToUtf8(wide, again) == Platform::EncodingOutcome::Done && again == text);
    }

    // However little room there is, nothing is written behind it.
    std::size_t needed = 0;
    static_cast<void>(Platform::ConvertString(text.data(), text.size(), nullptr, 0, needed));
    std::wstring half(needed / 2, L'\0');
    std::size_t units = 0;
    static_cast<void>(Platform::ConvertString(text.data(), text.size(), half.data(), half.size(), units));
    FUZZ_REQUIRE(units <= half.size() &&
                 wide.compare(0, units, half, 0, units) * (isWellFormed ? 1 : 0) == 0);
}
