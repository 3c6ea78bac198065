#include "Libs/Framework/Application/src/DialogPlacement.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <bit>

#include "Libs/Framework/Application/src/DialogLayout.h"

namespace {

using DialogLayout::Box;

Box ToBox(const RECT& rect) {
    return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}

Box ControlBox(HWND dialog, int control) {
    RECT rect = {};
    GetWindowRect(GetDlgItem(dialog, control), &rect);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return ToBox(rect);
}

void MoveControl(HWND dialog, int control, const Box& box) {
    SetWindowPos(GetDlgItem(dialog, control), nullptr, box.x, box.y, box.width, box.height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

// What a control's text measures in its font: broken into lines of `width`, or on one line.
Box MeasureText(HWND dialog, int control, int width, UINT format) {
    HWND window = GetDlgItem(dialog, control);
    std::array<wchar_t, 4096> text = {};
    GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    RECT rect = {0, 0, width, 0};
    if (HDC context = GetDC(window)) {
        HGDIOBJ previous =
            SelectObject(context, std::bit_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)));
        DrawTextW(context, text.data(), -1, &rect, DT_CALCRECT | format);
        SelectObject(context, previous);
        ReleaseDC(window, context);
    }
    return ToBox(rect);
}

int NeededButtonWidth(HWND dialog, const DialogPlacement::Controls& controls) {
    RECT padding = {0, 0, 12, 0}; // dialog units, both sides
    MapDialogRect(dialog, &padding);
    const int left = MeasureText(dialog, controls.left, 0, DT_SINGLELINE).width;
    const int right = MeasureText(dialog, controls.right, 0, DT_SINGLELINE).width;
    return std::max(left, right) + padding.right;
}

// The screen of the program that the user works with, without taskbars.
RECT WorkArea() {
    HMONITOR monitor = MonitorFromWindow(GetForegroundWindow(), MONITOR_DEFAULTTOPRIMARY);
    MONITORINFO info = {};
    info.cbSize = sizeof(info);
    if (GetMonitorInfoW(monitor, &info)) {
        return info.rcWork;
    }
    return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

void Centre(HWND dialog, const RECT& area) {
    RECT rect = {};
    GetWindowRect(dialog, &rect);
    const Box box = DialogLayout::Centre(ToBox(area), rect.right - rect.left, rect.bottom - rect.top);
    SetWindowPos(dialog, nullptr, box.x, box.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace

void DialogPlacement::FitToTexts(void* dialog, const Controls& controls) {
    HWND window = static_cast<HWND>(dialog);
    RECT client = {};
    GetClientRect(window, &client);
    const DialogLayout::Layout layout = {client.right, client.bottom, ControlBox(window, controls.message),
                                         ControlBox(window, controls.left),
                                         ControlBox(window, controls.right)};
    const int messageHeight =
        MeasureText(window, controls.message, layout.message.width, DT_WORDBREAK | DT_EXPANDTABS).height;
    const DialogLayout::Layout fitted =
        DialogLayout::Fit(layout, messageHeight, NeededButtonWidth(window, controls));

    RECT frame = {};
    GetWindowRect(window, &frame);
    SetWindowPos(window, nullptr, 0, 0, frame.right - frame.left + fitted.width - layout.width,
                 frame.bottom - frame.top + fitted.height - layout.height,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    MoveControl(window, controls.message, fitted.message);
    MoveControl(window, controls.left, fitted.left);
    MoveControl(window, controls.right, fitted.right);
    SetWindowPos(GetDlgItem(window, controls.message), HWND_TOP, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void DialogPlacement::SetIcon(void* dialog, void* module, int icon) {
    HWND window = static_cast<HWND>(dialog);
    const auto set = [&](WPARAM kind, int width, int height) {
        HANDLE image = LoadImageW(static_cast<HINSTANCE>(module), MAKEINTRESOURCEW(icon), IMAGE_ICON,
                                  GetSystemMetrics(width), GetSystemMetrics(height), LR_SHARED);
        SendMessageW(window, WM_SETICON, kind, reinterpret_cast<LPARAM>(image));
    };
    set(ICON_BIG, SM_CXICON, SM_CYICON);
    set(ICON_SMALL, SM_CXSMICON, SM_CYSMICON);
}

void DialogPlacement::ShowOnTop(void* dialog) {
    HWND window = static_cast<HWND>(dialog);
    SetWindowLongPtrW(window, GWL_EXSTYLE, GetWindowLongPtrW(window, GWL_EXSTYLE) | WS_EX_APPWINDOW);
    const RECT area = WorkArea();
    Centre(window, area);
    Centre(window, area); // a screen of another resolution has changed its size
    SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);

    FLASHWINFO flash = {};
    flash.cbSize = sizeof(flash);
    flash.hwnd = window;
    flash.dwFlags = FLASHW_ALL | FLASHW_TIMERNOFG; // until the user turns to it
    FlashWindowEx(&flash);
}
