// A name that is accepted stays inside its folder on Windows and on Linux, and names no device.
#include <algorithm>
#include <filesystem>

#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"
#include "tests/fuzz/Fuzz.h"

namespace {

// The system's reserved names: with any extension, in any case, blanks before the dot.
bool IsDevice(std::string part) {
    constexpr std::string_view Devices =
        " con prn aux nul conin$ conout$ com1 com2 com3 com4 com5 com6 com7 com8 com9 com\xC2\xB9 "
        "com\xC2\xB2 "
        "com\xC2\xB3 lpt1 lpt2 lpt3 lpt4 lpt5 lpt6 lpt7 lpt8 lpt9 lpt\xC2\xB9 lpt\xC2\xB2 lpt\xC2\xB3 ";
    part.erase(std::min(part.find('.'), part.size()));
    part.erase(part.find_last_not_of(' ') + 1);
    const bool isOneWord = part.find(' ') == std::string::npos; // two would match two names in a row
    return isOneWord && Devices.find(" " + String::LowerAscii(part) + " ") != std::string_view::npos;
}

} // namespace

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
        FUZZ_REQUIRE(!IsDevice(part.string()));
    }
}
