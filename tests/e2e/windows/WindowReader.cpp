// Prints as JSON what a user or a screen reader finds on the desktop.
//
//   WindowReader windows      every visible top-level window with its controls, in front first
//   WindowReader clipboard    the clipboard's text
#include <cstdio>
#include <string>
#include <string_view>

#include <windows.h>

namespace {

// Escapes everything but ASCII, so that the output needs no agreed encoding.
std::string Quoted(std::wstring_view text) {
    std::string quoted = "\"";
    for (const wchar_t character : text) {
        char escaped[8] = {};
        const bool isPlain = character >= ' ' && character < 0x7F && character != '"' && character != '\\';
        std::snprintf(escaped, sizeof(escaped), isPlain ? "%c" : "\\u%04x", static_cast<unsigned>(character));
        quoted += escaped;
    }
    return quoted + "\"";
}

std::string Field(const char* name, long long value) {
    return std::string("\"") + name + "\": " + std::to_string(value) + ", ";
}

std::wstring TextOf(HWND window) {
    // GetWindowText does not ask the controls of another process.
    std::wstring text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    const LRESULT length =
        SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

HWND FocusIn(HWND window) {
    GUITHREADINFO info = {};
    info.cbSize = sizeof(info);
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info.hwndFocus;
}

// Without the closing brace.
std::string Described(HWND window) {
    RECT area = {};
    GetWindowRect(window, &area);
    return "{" + Field("id", GetDlgCtrlID(window)) +
           Field("style", static_cast<unsigned>(GetWindowLongW(window, GWL_STYLE))) +
           Field("extendedStyle", static_cast<unsigned>(GetWindowLongW(window, GWL_EXSTYLE))) +
           Field("x", area.left) + Field("y", area.top) + Field("width", area.right - area.left) +
           Field("height", area.bottom - area.top) + Field("enabled", IsWindowEnabled(window)) +
           "\"text\": " + Quoted(TextOf(window));
}

// The visible windows from this one down to the last of its siblings.
std::string List(HWND window, std::string (*describe)(HWND)) {
    std::string list;
    for (; window; window = GetWindow(window, GW_HWNDNEXT)) {
        if (IsWindowVisible(window)) {
            list += (list.empty() ? "" : ", ") + describe(window) + "}";
        }
    }
    return "[" + list + "]";
}

std::string WithControls(HWND window) {
    HWND focus = FocusIn(window);
    return Described(window) + ", " + Field("foreground", GetForegroundWindow() == window) +
           Field("focus", focus && IsChild(window, focus) ? GetDlgCtrlID(focus) : 0) +
           "\"controls\": " + List(GetWindow(window, GW_CHILD), Described);
}

// Empty while another program has it.
std::string Clipboard() {
    HANDLE text = OpenClipboard(nullptr) ? GetClipboardData(CF_UNICODETEXT) : nullptr;
    const std::string quoted = Quoted(text ? static_cast<const wchar_t*>(GlobalLock(text)) : L"");
    GlobalUnlock(text);
    CloseClipboard();
    return quoted;
}

} // namespace

int main(int, char** arguments) {
    const bool isClipboard = std::string_view(arguments[1]) == "clipboard";
    std::puts((isClipboard ? Clipboard() : List(GetTopWindow(nullptr), WithControls)).c_str());
    return 0;
}
