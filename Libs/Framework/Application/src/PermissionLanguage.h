#pragma once

#include <cstdint>

// Which of the languages that the permission dialog speaks suits an interface language best: one of the same
// language, whatever the region (0x0c07, German of Austria, gives 0x0407, German), for Chinese one of the
// same script (0x0c04, Hong Kong, gives 0x7c04). 0 when there is none. Both are Windows language identifiers.
// The system's own choice knows its region's identifier or English, nothing in between.
uint16_t PermissionLanguageFor(uint16_t interfaceLanguage);
