#include "Libs/Framework/Application/src/PermissionTexts.h"

#include <windows.h>

#include <array>

namespace {

constexpr unsigned StringsInBlock = 16;

std::span<const wchar_t> FindBlock(HMODULE module, uint16_t language, unsigned id) {
    HRSRC resource = FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW(id / StringsInBlock + 1), language);
    HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    const void* block = loaded ? LockResource(loaded) : nullptr; // lives as long as the module
    if (!block) {
        return {};
    }
    return {static_cast<const wchar_t*>(block), SizeofResource(module, resource) / sizeof(wchar_t)};
}

} // namespace

std::optional<std::wstring_view> PermissionTexts::StringInBlock(std::span<const wchar_t> block,
                                                                unsigned place) {
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

uint16_t PermissionTexts::InterfaceLanguage() {
    return GetUserDefaultUILanguage();
}
