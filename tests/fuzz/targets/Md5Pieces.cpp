// A digest does not depend on the pieces in which the bytes arrive. The first bytes are the pieces' sizes.
#include <algorithm>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "tests/fuzz/Fuzz.h"

void FuzzOne(std::span<const uint8_t> input) {
    constexpr std::size_t SizeCount = 8;
    const std::span<const uint8_t> sizes = input.first(std::min(input.size(), SizeCount));
    const std::span<const uint8_t> bytes = input.subspan(sizes.size());
    Crypto::MD5 md5;
    std::span<const uint8_t> rest = bytes;
    for (const uint8_t size : sizes) {
        const auto piece = rest.first(std::min<std::size_t>(rest.size(), size));
        md5.Update(piece.data(), static_cast<uint32_t>(piece.size()));
        rest = rest.subspan(piece.size());
    }
    md5.Update(rest.data(), static_cast<uint32_t>(rest.size()));
    md5.Finish();
    char text[Crypto::MD5TextSize];
    Crypto::MD5ToText(md5.Digest(), text, sizeof(text));
    FUZZ_REQUIRE(Crypto::MD5OfBytes(bytes) == text);
}
