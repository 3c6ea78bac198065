#include "Libs/Processes/Core/src/AttachmentName.h"

#include <algorithm>
#include <string>

namespace {

char ToUpper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

bool IsForbidden(char character) {
    return static_cast<unsigned char>(character) < 0x20 ||
           std::string_view("<>:\"|?*").find(character) != std::string_view::npos;
}

// The digits 1 to 9, and the superscripts that Windows takes for 1 to 3.
bool IsDeviceNumber(std::string_view text) {
    return (text.size() == 1 && text[0] >= '1' && text[0] <= '9') || text == "\xC2\xB9" ||
           text == "\xC2\xB2" || text == "\xC2\xB3";
}

// A device keeps its meaning with any extension and with blanks before it.
bool IsDevice(std::string_view part) {
    std::string stem(part.substr(0, part.find('.')));
    stem.erase(stem.find_last_not_of(' ') + 1);
    std::transform(stem.begin(), stem.end(), stem.begin(), ToUpper);
    for (const std::string_view device : {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"}) {
        if (stem == device) {
            return true;
        }
    }
    const bool isPort = stem.starts_with("COM") || stem.starts_with("LPT");
    return isPort && IsDeviceNumber(std::string_view(stem).substr(3));
}

bool IsPlainName(std::string_view part) {
    return !part.empty() && part.back() != '.' && part.back() != ' ' &&
           std::none_of(part.begin(), part.end(), IsForbidden) && !IsDevice(part);
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
    const std::size_t length = name.size();
    return length >= 3 && ToUpper(name[length - 1]) == 'Z' && ToUpper(name[length - 2]) == 'G' &&
           name[length - 3] != '.';
}
