// A name that is accepted stays inside its folder under the rules of either system, and names no device.
#include <algorithm>
#include <array>
#include <vector>

#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "tests/fuzz/Fuzz.h"

namespace {

std::vector<std::string> Parts(std::string_view path, std::string_view separators) {
    std::vector<std::string> parts(1);
    for (const char c : path) {
        if (separators.find(c) != std::string_view::npos) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

// Windows drops dots and blanks at the end of each part before it looks at it.
std::string AsWindowsSeesIt(std::string part) {
    part.erase(part.find_last_not_of(". ") + 1);
    return part;
}

// Never climbs above its start.
bool StaysInside(const std::vector<std::string>& parts) {
    int depth = 0;
    for (const std::string& part : parts) {
        depth += part == ".." ? -1 : part.empty() || part == "." ? 0 : 1;
        if (depth < 0) {
            return false;
        }
    }
    return depth > 0;
}

// Written from the system's list of reserved names: with any extension, in any case, blanks before the dot.
bool IsDevice(const std::string& part) {
    std::string stem = AsWindowsSeesIt(part.substr(0, part.find('.')));
    for (char& c : stem) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    static constexpr std::array Devices = {
        "con",  "prn",  "aux",  "nul",         "conin$",      "conout$",
        "com1", "com2", "com3", "com4",        "com5",        "com6",
        "com7", "com8", "com9", "com\xC2\xB9", "com\xC2\xB2", "com\xC2\xB3",
        "lpt1", "lpt2", "lpt3", "lpt4",        "lpt5",        "lpt6",
        "lpt7", "lpt8", "lpt9", "lpt\xC2\xB9", "lpt\xC2\xB2", "lpt\xC2\xB3"};
    return std::find(Devices.begin(), Devices.end(), stem) != Devices.end();
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    const std::string name(Fuzz::Text(input));
    static_cast<void>(LooksCompressed(name));
    if (!IsSafeAttachmentName(name)) {
        return;
    }
    FUZZ_REQUIRE(name.size() <= MaxAttachmentNameLength);
    FUZZ_REQUIRE(name.find_first_of(":*?\"<>|") == std::string::npos);
    FUZZ_REQUIRE(std::none_of(name.begin(), name.end(), [](char c) { return c >= 0 && c < ' '; }));
    FUZZ_REQUIRE(StaysInside(Parts(name, "/")));

    std::vector<std::string> onWindows = Parts(name, "\\/");
    for (std::string& part : onWindows) {
        FUZZ_REQUIRE(!IsDevice(part));
        const std::string seen = AsWindowsSeesIt(part);
        FUZZ_REQUIRE(seen == part); // two names for one file would be two entries of a package
        part = seen;
    }
    FUZZ_REQUIRE(StaysInside(onWindows));

    const std::filesystem::path joined(FolderPath::Join("/folder", name));
    FUZZ_REQUIRE(joined.lexically_normal().string().starts_with("/folder/"));
}
