#include "Libs/Tarnel/Platform/src/Windows/Platform_Clipboard.h"

#include <cstddef>
#include <cstring>
#include <cwchar>

#include <windows.h>

namespace Platform {
namespace {

class OpenedClipboard {
public:
    explicit OpenedClipboard(HWND owner) : m_isOpen(OpenClipboard(owner) != 0) {}
    ~OpenedClipboard() {
        if (m_isOpen) {
            CloseClipboard();
        }
    }
    OpenedClipboard(const OpenedClipboard&) = delete; // one close for one open
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    explicit operator bool() const { return m_isOpen; }

private:
    bool m_isOpen;
};

// Movable zeroed memory, freed unless the clipboard has taken it over.
class ClipboardMemory {
public:
    explicit ClipboardMemory(std::size_t size) : m_handle(GlobalAlloc(GHND, size)) {}
    ~ClipboardMemory() {
        if (m_handle) {
            GlobalFree(m_handle);
        }
    }
    ClipboardMemory(const ClipboardMemory&) = delete; // there is one owner
    ClipboardMemory& operator=(const ClipboardMemory&) = delete;

    // Calls fill with the memory; false when there is none.
    template <class Fill>
    bool With(Fill fill) {
        void* memory = m_handle ? GlobalLock(m_handle) : nullptr;
        if (!memory) {
            return false;
        }
        fill(memory);
        GlobalUnlock(m_handle);
        return true;
    }

    bool GiveToClipboard(UINT format) {
        if (!SetClipboardData(format, m_handle)) {
            return false;
        }
        m_handle = nullptr;
        return true;
    }

private:
    HGLOBAL m_handle;
};

} // namespace

bool CopyToClipboard(void* ownerWindow, const wchar_t* text) {
    const OpenedClipboard clipboard(static_cast<HWND>(ownerWindow));
    const int narrowSize = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (!clipboard || narrowSize <= 0) {
        return false;
    }
    const std::size_t wideSize = (std::wcslen(text) + 1) * sizeof(wchar_t);
    ClipboardMemory wide(wideSize);
    ClipboardMemory narrow(static_cast<std::size_t>(narrowSize));
    const bool isFilled = wide.With([&](void* memory) {
        std::memcpy(memory, text, wideSize);
    }) && narrow.With([&](void* memory) {
        WideCharToMultiByte(CP_ACP, 0, text, -1, static_cast<char*>(memory), narrowSize, nullptr, nullptr);
    });
    // The richer format first: programs take the first one that they understand.
    return isFilled && EmptyClipboard() && wide.GiveToClipboard(CF_UNICODETEXT) &&
           narrow.GiveToClipboard(CF_TEXT);
}

} // namespace Platform
