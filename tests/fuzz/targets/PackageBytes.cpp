// Everything that is read of a package lies in it, and a package without problems can be put together again.
#include <algorithm>

#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Processes/Core/src/PackageReader.h"
#include "tests/fuzz/Fuzz.h"

namespace {

bool LiesIn(std::span<const uint8_t> part, std::span<const uint8_t> whole) {
    return part.empty() ||
           (part.data() >= whole.data() && part.size() <= whole.size() &&
            part.data() - whole.data() <= static_cast<std::ptrdiff_t>(whole.size() - part.size()));
}

std::vector<uint8_t> PutTogether(const PackageReader& reader) {
    PackageFormat::Composer composer(reader.GetHeaderBytes(), 0);
    for (const PackageEntry& entry : reader.GetEntries()) {
        composer.AppendEntry(entry.data);
    }
    return composer.Take();
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    PackageReader reader(input);
    uint64_t advanced = 0;
    reader.CheckDigests([&](uint64_t bytes) { advanced += bytes; });
    FUZZ_REQUIRE(advanced <= 2 * input.size());
    FUZZ_REQUIRE(LiesIn(reader.GetHeaderBytes(), input));
    for (const PackageProblem& problem : reader.GetProblems()) {
        FUZZ_REQUIRE(problem.offset <= input.size() && !problem.text.empty());
    }
    const bool isGood = reader.GetProblems().empty();
    for (const PackageEntry& entry : reader.GetEntries()) {
        FUZZ_REQUIRE(LiesIn(entry.data, input));
        FUZZ_REQUIRE(!isGood || IsSafeAttachmentName(entry.name));
    }
    if (isGood) {
        const std::vector<uint8_t> again = PutTogether(reader);
        FUZZ_REQUIRE(std::equal(again.begin(), again.end(), input.begin(), input.end()));
    }
}
