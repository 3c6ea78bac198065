#include "Libs/Framework/Application/src/PermissionTexts.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string_view>

namespace {

constexpr unsigned StringsInBlock = 16;

constexpr uint16_t ChineseSimplified = 0x0804;
constexpr uint16_t ChineseTraditional = 0x7c04;
constexpr std::array<uint16_t, 3> TraditionalRegions = {0x0404, 0x0c04, 0x1404}; // Taiwan, Hong Kong, Macao

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

// An identifier without its region.
constexpr uint16_t PrimaryLanguage(uint16_t language) {
    return static_cast<uint16_t>(language & 0x3ff);
}

std::span<const wchar_t> FindBlock(HMODULE module, uint16_t language, unsigned id) {
    HRSRC resource = FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW(id / StringsInBlock + 1), language);
    HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    const void* block = loaded ? LockResource(loaded) : nullptr; // lives as long as the module
    if (!block) {
        return {};
    }
    return {static_cast<const wchar_t*>(block), SizeofResource(module, resource) / sizeof(wchar_t)};
}

// The string at a place (0 to 15) of one block of a string table: sixteen strings, each after its length.
// Empty if the block has none there.
std::optional<std::wstring_view> StringInBlock(std::span<const wchar_t> block, unsigned place) {
    while (!block.empty()) {
        const std::size_t length = block[0];
        block = block.subspan(1);
        if (length > block.size()) {
            break;
        }
        if (place == 0) {
            return length == 0 ? std::nullopt : std::optional(std::wstring_view(block.data(), length));
        }
        block = block.subspan(length);
        --place;
    }
    return std::nullopt;
}

} // namespace

uint16_t PermissionTexts::LanguageFor(uint16_t interfaceLanguage) {
    if (interfaceLanguage == ChineseTraditional ||
        std::ranges::find(TraditionalRegions, interfaceLanguage) != TraditionalRegions.end()) {
        return ChineseTraditional;
    }
    const auto found = std::ranges::find(Languages, PrimaryLanguage(interfaceLanguage), &PrimaryLanguage);
    return found == Languages.end() ? uint16_t{0} : *found;
}

ResultCode PermissionTexts::Load(void* module, uint16_t language, unsigned id, std::wstring& text) {
    auto* instance = static_cast<HMODULE>(module);
    if (language != 0) {
        const auto block = FindBlock(instance, language, id);
        if (const auto found = StringInBlock(block, id % StringsInBlock)) {
            text = *found;
            return Platform::Success;
        }
    }
    std::array<wchar_t, 4096> buffer = {};
    if (LoadStringW(instance, id, buffer.data(), static_cast<int>(buffer.size())) <= 0) {
        return "Failed to load locale string";
    }
    text = buffer.data();
    return Platform::Success;
}
