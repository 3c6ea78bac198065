#include <cstring>
#include <cwchar>

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"
#include "Libs/Tarnel/Platform/src/Windows/Platform_DialogTemplate.h"

namespace Platform {
namespace {

enum ControlId : uint16_t {
    IgnoreAlwaysButton = 1001,
    IgnoreOnceButton = 1002,
    DebugButton = 1003,
    AbortButton = 1004,
    ReportEdit = 1005,
    CopyButton = 1006,
};

// Guarded by the assertion state's lock. No heap here: the check may have failed because memory ran out.
// The wide form never has more units than the report has bytes.
constinit wchar_t g_reportText[AssertReportSize] = {};

void BuildTemplate(DialogTemplate& dialog, AssertKind kind) {
    constexpr uint32_t Style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_CENTER | DS_SHELLFONT;
    constexpr uint32_t EditStyle =
        WS_VISIBLE | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_AUTOVSCROLL | ES_AUTOHSCROLL | ES_READONLY;
    constexpr struct {
        const char* text;
        uint16_t x;
        uint16_t id;
    } Buttons[] = {
        {"A&bort", 28, AbortButton},
        {"&Copy To Clipboard", 103, CopyButton},
        {"&Debug", 178, DebugButton},
        {"Ignore &Always", 253, IgnoreAlwaysButton},
        {"&Ignore Once", 328, IgnoreOnceButton},
    };
    const char* title = kind == AssertKind::Assert ? "Assert Failed!" : "Data Error Occurred!";
    dialog.Begin(title, Style, {0, 0, 400, 247}, "MS Shell Dlg", 8);
    for (const auto& button : Buttons) {
        dialog.AddButton(button.text, WS_VISIBLE, 0, {button.x, 226, 64, 14}, button.id);
    }
    dialog.AddEdit("", EditStyle, WS_EX_STATICEDGE, {7, 7, 386, 211}, ReportEdit);
}

void SetTitle(HWND dialog, AssertKind kind) {
    const SystemPath path(OwnProgramPath());
    const wchar_t* lastSlash = std::wcsrchr(path.Get(), L'\\');
    wchar_t title[MAX_PATH + 32] = {};
    std::swprintf(title, std::size(title), L"%ls: %ls",
                  kind == AssertKind::Assert ? L"Assert Failed" : L"Data Error Occurred",
                  lastSlash ? lastSlash + 1 : path.Get());
    SetWindowTextW(dialog, title);
}

void Prepare(HWND dialog, AssertKind kind) {
    SetTitle(dialog, kind);
    SetDlgItemTextW(dialog, ReportEdit, g_reportText);
    const bool canDebug = AssertSystem::IsDebuggerAttached();
    EnableWindow(GetDlgItem(dialog, DebugButton), canDebug);
    // A disabled button can't take the focus, and without it the keyboard would be dead.
    const ControlId first = kind == AssertKind::Assert && canDebug ? DebugButton : IgnoreOnceButton;
    SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, first)), TRUE);
}

// As UTF-16 alone: the system makes the narrow forms for programs that ask for them. False if another program
// holds the clipboard or memory is short.
bool CopyToClipboard(HWND owner, const wchar_t* text) {
    const std::size_t size = (std::wcslen(text) + 1) * sizeof(wchar_t);
    HGLOBAL memory = GlobalAlloc(GHND, size);
    bool isTaken = false;
    if (void* copy = memory ? GlobalLock(memory) : nullptr) {
        std::memcpy(copy, text, size);
        GlobalUnlock(memory);
        if (OpenClipboard(owner)) {
            isTaken = EmptyClipboard() && SetClipboardData(CF_UNICODETEXT, memory); // it owns the memory then
            CloseClipboard();
        }
    }
    if (!isTaken) {
        GlobalFree(memory);
    }
    return isTaken;
}

bool OnButton(HWND dialog, int id) {
    switch (id) {
    case AbortButton:
        return EndDialog(dialog, AssertAnswer_Abort);
    case DebugButton:
        return EndDialog(dialog, AssertAnswer_Debug);
    case IgnoreAlwaysButton:
        return EndDialog(dialog, AssertAnswer_IgnoreAlways);
    case IgnoreOnceButton:
        return EndDialog(dialog, AssertAnswer_IgnoreOnce);
    case CopyButton:
        if (!CopyToClipboard(dialog, g_reportText)) {
            MessageBeep(MB_ICONWARNING); // another program holds the clipboard: try again
        }
        return true;
    default:
        return false; // Escape and Enter among them
    }
}

AssertKind KindOf(HWND dialog) {
    return static_cast<AssertKind>(GetWindowLongPtrW(dialog, DWLP_USER));
}

INT_PTR RedBackground() {
    static HBRUSH s_brush = CreateSolidBrush(RGB(255, 0, 0));
    return reinterpret_cast<INT_PTR>(s_brush);
}

INT_PTR CALLBACK OnMessage(HWND dialog, UINT message, WPARAM wordParameter, LPARAM longParameter) {
    switch (message) {
    case WM_INITDIALOG:
        SetWindowLongPtrW(dialog, DWLP_USER, longParameter);
        Prepare(dialog, KindOf(dialog));
        return FALSE; // Prepare has set the focus
    case WM_COMMAND:
        return HIWORD(wordParameter) == BN_CLICKED && OnButton(dialog, LOWORD(wordParameter));
    case WM_CTLCOLORDLG:
        return KindOf(dialog) == AssertKind::DataError ? RedBackground() : FALSE;
    case WM_CLOSE: // a failed assert wants one of its buttons
        if (KindOf(dialog) == AssertKind::DataError) {
            EndDialog(dialog, AssertAnswer_IgnoreOnce);
        }
        return TRUE;
    default:
        return FALSE;
    }
}

// With a message loop of its own on the calling thread. -1 if no dialog can be shown, for instance without a
// desktop. Called inside the assertion state's lock, so there is one dialog at a time in the process.
int ShowAssertDialog(const char* report, int kind) {
    // First the text: a check that fails from here on writes its own report over this one.
    if (MultiByteToWideChar(CP_UTF8, 0, report, -1, g_reportText, AssertReportSize) == 0) {
        g_reportText[0] = 0;
    }
    DialogTemplate dialog;
    BuildTemplate(dialog, static_cast<AssertKind>(kind));
    // The wide call, so that texts keep their characters whatever the code page; the template is the same.
    return static_cast<int>(DialogBoxIndirectParamW(GetModuleHandleW(nullptr),
                                                    static_cast<LPCDLGTEMPLATEW>(dialog.Template()), nullptr,
                                                    OnMessage, kind));
}

} // namespace

AssertDialog AssertSystem::BuiltInDialog() {
    return ShowAssertDialog;
}

} // namespace Platform
