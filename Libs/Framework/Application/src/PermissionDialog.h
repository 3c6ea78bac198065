#pragma once

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Shows the question whether reports may be sent, in the user's language, and blocks the calling thread until
// it is answered. `instance` is the module with dialog and texts. `allowed` says whether Yes was chosen; No,
// Escape and the close box refuse. A failure means that there was no dialog; `allowed` is false then.
//
// The dialog comes up over everything, in the middle of the screen where the user works, but leaves the
// keyboard to the program that has it. Only when no program has it the dialog takes it. What is typed or
// clicked in the first moments does not answer (AnswerGuard). After the user has turned to it and away again
// it no longer stays on top.
ResultCode ShowPermissionDialog(void* instance, bool& allowed);
