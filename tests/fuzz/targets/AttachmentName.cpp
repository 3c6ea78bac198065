// A name that is accepted stays inside its folder on Windows and on Linux.
#include <algorithm>
#include <filesystem>

#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "tests/fuzz/Fuzz.h"

void FuzzOne(std::span<const uint8_t> input) {
    std::string name(Fuzz::Text(input));
    static_cast<void>(LooksCompressed(name));
    if (!IsSafeAttachmentName(name)) {
        return;
    }
    FUZZ_REQUIRE(name.size() <= MaxAttachmentNameLength);
    FUZZ_REQUIRE(std::ranges::none_of(name, [](char c) { return c >= 0 && c < ' '; }));
    const std::filesystem::path joined(FolderPath::Join("/folder", name));
    FUZZ_REQUIRE(joined.lexically_normal().string().starts_with("/folder/"));

    std::ranges::replace(name, '\\', '/');
    FUZZ_REQUIRE(name.find_first_of(":*?\"<>|") == std::string::npos && name.front() != '/');
    for (const std::filesystem::path& part : std::filesystem::path(name)) {
        // Windows drops dots and blanks at the end, so that such a part would be another one, or "..".
        FUZZ_REQUIRE(part != "" && !part.string().ends_with('.') && !part.string().ends_with(' '));
    }
}
