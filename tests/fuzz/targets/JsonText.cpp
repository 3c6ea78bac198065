// What is written of a parsed text reads as the same again.
#include <cstring>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "tests/fuzz/Fuzz.h"

void FuzzOne(std::span<const uint8_t> input) {
    const std::string_view text = Fuzz::Text(input);
    JsonDocument document;
    if (const auto parsed = JsonSerialization::ParseText(text, document); !parsed) {
        FUZZ_REQUIRE(parsed.offset <= text.size() && std::strlen(parsed.error) > 0);
        return;
    }
    std::string written;
    std::string again;
    FUZZ_REQUIRE(JsonSerialization::WriteText(document, written).Succeeded());
    FUZZ_REQUIRE(JsonSerialization::ParseText(written, document));
    FUZZ_REQUIRE(JsonSerialization::WriteText(document, again).Succeeded());
    FUZZ_REQUIRE(again == written);
}
