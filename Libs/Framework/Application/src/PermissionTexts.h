#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The texts of the permission dialog, out of the string tables of a module.
namespace PermissionTexts {

// The string at a place (0 to 15) of one block of a string table: sixteen strings, each behind its length.
// Empty for a string of no length, which is how a block says that it has none, and for a block cut short.
std::optional<std::wstring_view> StringInBlock(std::span<const wchar_t> block, unsigned place);

// Text `id` (PERMISSION_TEXT_...) in the given language. With language 0, or one that the module does not
// have, the system chooses. `text` is untouched by a failure.
ResultCode Load(void* module, uint16_t language, unsigned id, std::wstring& text);

// The language in which the user sees Windows itself.
uint16_t InterfaceLanguage();

} // namespace PermissionTexts
