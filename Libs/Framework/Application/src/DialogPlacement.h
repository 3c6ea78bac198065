#pragma once

// How a dialog of one message over two buttons comes up. `dialog` is its window, on whose thread all this
// runs.
namespace DialogPlacement {

struct Controls {
    int message; // identifiers in the dialog
    int left;
    int right;
};

// Gives the controls the room that their texts need, and lets readers of the screen meet the message first.
void FitToTexts(void* dialog, const Controls& controls);

// The icon of the caption, of the taskbar and of the task switcher; `icon` numbers a resource of the module.
void SetIcon(void* dialog, void* module, int icon);

// In the middle of the screen where the foreground program is, over all other windows and in the taskbar,
// which asks for attention. The keyboard stays where it is.
void ShowOnTop(void* dialog);

} // namespace DialogPlacement
