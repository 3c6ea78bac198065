// Everything that is read of a package lies in it, one without problems can be put together again, and
// unpacking writes into its folder only and never more than the limit.
#include <algorithm>

#include "Libs/Framework/Core/src/Gzip.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Processes/Core/src/PackageReader.h"
#include "Tools/PackageTool/src/Unpack.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/ScratchFolder.h"

namespace fs = std::filesystem;

namespace {

bool LiesIn(uint64_t offset, uint64_t size, std::span<const uint8_t> whole) {
    return offset <= whole.size() && size <= whole.size() - offset;
}

std::vector<uint8_t> PutTogether(const PackageReader& reader, std::span<const uint8_t> input) {
    std::vector<uint8_t> package(input.size());
    PackageFormat::Composer composer([&](uint64_t offset, std::span<const uint8_t> bytes) {
        FUZZ_REQUIRE(LiesIn(offset, bytes.size(), package));
        std::ranges::copy(bytes, package.begin() + static_cast<std::ptrdiff_t>(offset));
        return Platform::Success;
    });
    FUZZ_REQUIRE(composer.AppendHeader(input.subspan(PackageFormat::PrefixSize, reader.GetHeaderSize())));
    for (const PackageEntry& entry : reader.GetEntries()) {
        Platform::MemorySource data(input.subspan(entry.DataOffset(), entry.size));
        FUZZ_REQUIRE(composer.AppendEntry(data, entry.digest));
    }
    uint64_t size = 0;
    FUZZ_REQUIRE(composer.Finish(size) && size == input.size());
    return package;
}

void Unpack(const PackageReader& reader, Platform::ByteSource& package) {
    static const TestSupport::ScratchFolder s_scratch("fuzz-unpack");
    const fs::path target = fs::canonical(s_scratch.Folder()) / "target";
    UnpackFolder folder(target.string(), true);
    uint64_t left = 1 << 20;
    for (const PackageEntry& entry : reader.GetEntries()) {
        PlatformHelpers::InflateProgress progress;
        const auto fill = [&](const auto& write) {
            return PlatformHelpers::Decompress(package, entry.DataOffset(), entry.size, left, write, progress)
                .Succeeded();
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
    Platform::MemorySource source(input);
    PackageReader reader(source);
    reader.CheckDigests([](uint64_t) {});
    FUZZ_REQUIRE(reader.GetHeaderSize() == 0 ||
                 LiesIn(PackageFormat::PrefixSize, reader.GetHeaderSize(), input));
    for (const PackageProblem& problem : reader.GetProblems()) {
        FUZZ_REQUIRE(problem.offset <= input.size() && !problem.text.empty());
    }
    const bool isGood = reader.GetProblems().empty();
    for (const PackageEntry& entry : reader.GetEntries()) {
        FUZZ_REQUIRE(LiesIn(entry.DataOffset(), entry.size, input));
        FUZZ_REQUIRE(!isGood || IsSafeAttachmentName(entry.name));
    }
    FUZZ_REQUIRE(!isGood || std::ranges::equal(PutTogether(reader, input), input));
    Unpack(reader, source);
}
