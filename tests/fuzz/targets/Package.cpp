// Everything that is read of a package lies in it, one without problems can be put together again, and
// unpacking writes into its folder only and never more than the limit.
#include <algorithm>

#include "Libs/Framework/Core/src/PlatformHelpers_Inflate.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Processes/Core/src/PackageReader.h"
#include "Tools/PackageTool/src/Unpack.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/ScratchFolder.h"

namespace fs = std::filesystem;

namespace {

bool LiesIn(std::span<const uint8_t> part, std::span<const uint8_t> whole) {
    return part.empty() ||
           (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

std::vector<uint8_t> PutTogether(const PackageReader& reader) {
    PackageFormat::Composer composer(reader.GetHeaderBytes(), 0);
    for (const PackageEntry& entry : reader.GetEntries()) {
        composer.AppendEntry(entry.data);
    }
    return composer.Take();
}

void Unpack(const PackageReader& reader) {
    static const TestSupport::ScratchFolder s_scratch("fuzz-unpack");
    const fs::path target = fs::canonical(s_scratch.Folder()) / "target";
    UnpackFolder folder(target.string(), true);
    uint64_t left = 1 << 20;
    for (const PackageEntry& entry : reader.GetEntries()) {
        PlatformHelpers::InflateProgress progress;
        const auto fill = [&](const auto& write) {
            return PlatformHelpers::Decompress(entry.data, left, write, progress).Succeeded();
        };
        std::string path;
        const std::string reason = folder.Write(entry.name, fill, path);
        FUZZ_REQUIRE(progress.produced <= left && reason.empty() == !path.empty());
        left -= progress.produced;
        FUZZ_REQUIRE(path.empty() || fs::canonical(path).string().starts_with((target / "").string()));
        FUZZ_REQUIRE(path.empty() || fs::file_size(path) == progress.produced);
    }
    fs::remove_all(target);
    FUZZ_REQUIRE(fs::is_empty(s_scratch.Folder()));
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    PackageReader reader(input);
    reader.CheckDigests([](uint64_t) {});
    FUZZ_REQUIRE(LiesIn(reader.GetHeaderBytes(), input));
    for (const PackageProblem& problem : reader.GetProblems()) {
        FUZZ_REQUIRE(problem.offset <= input.size() && !problem.text.empty());
    }
    const bool isGood = reader.GetProblems().empty();
    for (const PackageEntry& entry : reader.GetEntries()) {
        FUZZ_REQUIRE(LiesIn(entry.data, input));
        FUZZ_REQUIRE(!isGood || IsSafeAttachmentName(entry.name));
    }
    FUZZ_REQUIRE(!isGood || std::ranges::equal(PutTogether(reader), input));
    Unpack(reader);
}
