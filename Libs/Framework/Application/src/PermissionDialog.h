#pragma once

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Asks in the user's language whether reports may be sent, and blocks the calling thread until the user has
// answered. `instance` is the module with dialog and texts. `allowed` is true after Yes, false after No,
// Escape and the close box. A failure means that there was no dialog; `allowed` is false then.
//
// The dialog comes up over everything, in the middle of the screen where the user works, but leaves the
// keyboard to the program that has it and takes it only if none has it. Keys and clicks of the first second
// don't answer (AnswerGuard).
ResultCode ShowPermissionDialog(void* instance, bool& allowed);
