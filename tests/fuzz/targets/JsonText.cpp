// The two ways of the parser agree on every text, and what is written reads as the same again.
#include <cstring>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Exponents.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Surrogates.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_TextStream.h"
#include "tests/fuzz/Fuzz.h"

namespace {

std::string Written(const JsonDocument& document) {
    std::string text;
    FUZZ_REQUIRE(JsonSerialization::WriteText(document, text).Succeeded());
    return text;
}

// The parser by itself, without the fast way and without protection.
bool ParsePlainly(std::string_view text, JsonDocument& document) {
    constexpr unsigned Flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    JsonSerialization::TextStream stream(text);
    return !document.ParseStream<Flags>(stream).HasParseError();
}

// Fractions are read to a few units of the last place only, so that they may change once more.
bool MayHoldFraction(const std::string& text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char next = at + 1 < text.size() ? text[at + 1] : ' ';
        if (text[at] == '.' || (text[at] == 'e' && (next == '-' || (next >= '0' && next <= '9')))) {
            return true;
        }
    }
    return false;
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    const std::string_view text = Fuzz::Text(input);
    JsonDocument document;
    const bool isParsed = JsonSerialization::ParseText(text, document);
    if (!JsonSerialization::HasUnsafeExponent(text) && !JsonSerialization::HasLoneLowSurrogate(text)) {
        JsonDocument plain;
        FUZZ_REQUIRE(ParsePlainly(text, plain) == isParsed);
        FUZZ_REQUIRE(!isParsed || Written(plain) == Written(document));
    }
    if (!isParsed) {
        FUZZ_REQUIRE(document.GetErrorOffset() <= text.size());
        FUZZ_REQUIRE(std::strlen(JsonSerialization::ParseErrorText(document)) > 0);
        return;
    }
    const std::string written = Written(document);
    JsonDocument again;
    FUZZ_REQUIRE(JsonSerialization::ParseText(written, again));
    FUZZ_REQUIRE(MayHoldFraction(written) || Written(again) == written);
}
