// What is written of a parsed text, or of a header, reads as the same again.
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "tests/fuzz/Fuzz.h"

namespace {

std::string Written(const JsonDocument& document) {
    std::string text;
    FUZZ_REQUIRE(JsonSerialization::WriteText(document, text).Succeeded());
    return text;
}

std::string Written(const BugHeader& header) {
    JsonDocument document;
    FUZZ_REQUIRE(JsonSerialization::WriteRecord(header, document).Succeeded());
    return Written(document);
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    JsonDocument document;
    if (const auto parsed = JsonSerialization::ParseText(Fuzz::Text(input), document); !parsed) {
        FUZZ_REQUIRE(parsed.offset <= input.size() && *parsed.error);
        return;
    }
    const std::string text = Written(document);
    FUZZ_REQUIRE(JsonSerialization::ParseText(text, document) && Written(document) == text);
    BugHeader header;
    JsonProblem problem;
    if (!HeaderFile::Parse(Fuzz::Text(input), header, &problem)) {
        FUZZ_REQUIRE(!problem.text.empty() && problem.position.line > 0);
    } else {
        BugHeader again;
        FUZZ_REQUIRE(HeaderFile::Parse(Written(header), again) && Written(again) == Written(header));
        FUZZ_REQUIRE(header.catalog.FilesInPackageOrder().empty() ||
                     !header.catalog.DeriveInstanceKey().empty());
    }
}
