#pragma once

namespace Platform {

// Puts text on the clipboard, once in the process's code page (CF_TEXT) and once wide (CF_UNICODETEXT), so
// that programs with another code page get every character. ownerWindow is an HWND of the calling thread or
// null. False when another program holds the clipboard or memory is short.
[[nodiscard]] bool CopyToClipboard(void* ownerWindow, const wchar_t* text);

} // namespace Platform
