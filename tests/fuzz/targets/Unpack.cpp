// Unpacking a package, whatever it holds, writes into its folder only, and never more than the limit.
#include "Tools/PackageTool/src/Unpack.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Inflate.h"
#include "Libs/Processes/Core/src/PackageReader.h"
#include "tests/fuzz/Fuzz.h"

namespace fs = std::filesystem;

namespace {

constexpr uint64_t Limit = 1 << 20;

const fs::path& Root() {
    static const Fuzz::ScratchFolder s_folder("unpack");
    return s_folder.Path();
}

void Unpack(const PackageReader& reader, UnpackFolder& folder, const fs::path& target) {
    uint64_t limit = Limit;
    for (const PackageEntry& entry : reader.GetEntries()) {
        PlatformHelpers::InflateProgress progress;
        const auto fill = [&](const auto& write) {
            return PlatformHelpers::Decompress(entry.data, limit, write, progress).Succeeded();
        };
        std::string path;
        const std::string reason = folder.Write(entry.name, fill, path);
        limit -= progress.produced;
        FUZZ_REQUIRE(reason.empty() == !path.empty());
        if (reason.empty()) {
            FUZZ_REQUIRE(fs::canonical(path).string().starts_with((target / "").string()));
            FUZZ_REQUIRE(fs::file_size(path) == progress.produced);
        }
    }
}

uint64_t BytesUnder(const fs::path& folder) {
    uint64_t bytes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        bytes += entry.is_regular_file() ? entry.file_size() : 0;
    }
    return bytes;
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    const PackageReader reader(input);
    if (reader.GetEntries().empty()) {
        return;
    }
    const fs::path target = fs::canonical(Root()) / "target";
    UnpackFolder folder(target.string(), true);
    Unpack(reader, folder, target);
    uint64_t entriesInRoot = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(Root())) {
        ++entriesInRoot;
    }
    FUZZ_REQUIRE(entriesInRoot <= 1);
    if (entriesInRoot == 1) {
        FUZZ_REQUIRE(BytesUnder(target) <= Limit);
        fs::remove_all(target);
    }
}
