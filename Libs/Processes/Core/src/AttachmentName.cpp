#include "Libs/Processes/Core/src/AttachmentName.h"

#include <algorithm>
#include <string>

#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace {

bool IsForbidden(char character) {
    return static_cast<unsigned char>(character) < 0x20 ||
           std::string_view("<>:\"|?*").find(character) != std::string_view::npos;
}

// 1 to 9, and the superscript digits, which Windows reads as 1 to 3.
bool IsDeviceNumber(std::string_view text) {
    return (text.size() == 1 && text[0] >= '1' && text[0] <= '9') || text == "\xC2\xB9" ||
           text == "\xC2\xB2" || text == "\xC2\xB3";
}

// A device name stays one with any extension, and with blanks before that.
bool IsDevice(std::string_view part) {
    std::string stem = String::LowerAscii(part.substr(0, part.find('.')));
    stem.erase(stem.find_last_not_of(' ') + 1);
    for (const std::string_view device : {"con", "prn", "aux", "nul", "conin$", "conout$"}) {
        if (stem == device) {
            return true;
        }
    }
    const bool isPort = stem.starts_with("com") || stem.starts_with("lpt");
    return isPort && IsDeviceNumber(std::string_view(stem).substr(3));
}

bool IsPlainName(std::string_view part) {
    return !part.empty() && part.back() != '.' && part.back() != ' ' &&
           std::ranges::none_of(part, IsForbidden) && !IsDevice(part);
}

} // namespace

bool IsSafeAttachmentName(std::string_view name) {
    if (name.size() > MaxAttachmentNameLength) {
        return false;
    }
    for (;;) {
        const std::size_t end = name.find_first_of("\\/");
        if (!IsPlainName(name.substr(0, end))) {
            return false;
        }
        if (end == std::string_view::npos) {
            return true;
        }
        name.remove_prefix(end + 1);
    }
}

bool LooksCompressed(std::string_view name) {
    return name.size() >= 3 && String::LowerAscii(name).ends_with("gz") && name[name.size() - 3] != '.';
}
