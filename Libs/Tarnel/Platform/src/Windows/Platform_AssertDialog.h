#pragma once

namespace Platform {

// Shows the report of a failed check and waits for one of the five buttons, with a message loop of its own on
// the calling thread. kind is an AssertKind, ownerWindow an HWND or null. Gives an AssertAnswer, or -1 when
// no dialog can be shown, for instance without a desktop. Called inside the assertion state's lock, so there
// is one dialog at a time in the process.
int ShowAssertDialog(void* ownerWindow, const char* report, int kind);

} // namespace Platform
