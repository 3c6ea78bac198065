// A header that was read can be written, and what was written reads as the same header.
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "tests/fuzz/Fuzz.h"

namespace {

std::string Written(const BugHeader& header) {
    JsonDocument document;
    std::string text;
    FUZZ_REQUIRE(JsonSerialization::WriteRecord(header, document).Succeeded());
    FUZZ_REQUIRE(JsonSerialization::WriteText(document, text).Succeeded());
    return text;
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    BugHeader header;
    if (!HeaderFile::Parse(Fuzz::Text(input), header)) {
        return;
    }
    const std::string text = Written(header);
    BugHeader again;
    FUZZ_REQUIRE(HeaderFile::Parse(text, again).Succeeded());
    FUZZ_REQUIRE(Written(again) == text);

    std::string names;
    for (const Attachment* const file : header.catalog.FilesInPackageOrder()) {
        FUZZ_REQUIRE(!file->file.empty());
        names += file->file + "\n";
    }
    FUZZ_REQUIRE(names.find(header.catalog.DeriveInstanceKey()) != std::string::npos);
}
