#include "Libs/Framework/Application/src/PermissionLanguage.h"

#include <algorithm>
#include <array>

namespace {

constexpr uint16_t ChineseSimplified = 0x0804;
constexpr uint16_t ChineseTraditional = 0x7c04;

constexpr std::array<uint16_t, 12> Languages = {
    0x0407, // German
    0x0409, // English
    0x040a, // Spanish
    0x040c, // French
    0x0410, // Italian
    0x0411, // Japanese
    0x0412, // Korean
    0x0415, // Polish
    0x0416, // Portuguese
    0x0419, // Russian
    ChineseSimplified,
    ChineseTraditional,
};

// What remains of an identifier without its region.
constexpr uint16_t PrimaryLanguage(uint16_t language) {
    return language & 0x3ff;
}

bool IsWrittenInTraditionalChinese(uint16_t language) {
    constexpr std::array<uint16_t, 4> regions = {0x0404, 0x0c04, 0x1404,
                                                 ChineseTraditional}; // Taiwan, Hong Kong, Macao
    return std::ranges::find(regions, language) != regions.end();
}

} // namespace

uint16_t PermissionLanguageFor(uint16_t interfaceLanguage) {
    if (IsWrittenInTraditionalChinese(interfaceLanguage)) {
        return ChineseTraditional;
    }
    const auto found = std::ranges::find(Languages, PrimaryLanguage(interfaceLanguage), &PrimaryLanguage);
    return found == Languages.end() ? uint16_t{0} : *found;
}
