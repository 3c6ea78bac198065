#pragma once

#include <cstdint>
#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The texts of the permission dialog, from the string tables of a module. Languages are Windows language
// identifiers.
namespace PermissionTexts {

// The language of the dialog that suits an interface language best: the same one in any region (0x0c07,
// German of Austria, gives 0x0407, German); for Chinese the one of the same script (0x0c04, Hong Kong, gives
// 0x7c04). 0 if there is none. Windows' own choice knows only the exact region or English.
uint16_t LanguageFor(uint16_t interfaceLanguage);

// Text `id` (PERMISSION_TEXT_...) in the given language. With language 0, or one that the module does not
// have, the system chooses. A failure leaves `text` unchanged.
ResultCode Load(void* module, uint16_t language, unsigned id, std::wstring& text);

} // namespace PermissionTexts
