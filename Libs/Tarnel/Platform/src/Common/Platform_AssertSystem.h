#pragma once

#include "Libs/Tarnel/Platform/src/Common/Platform_AssertState.h"

// What the checks need from the operating system.
namespace Platform {

void InitializeAssertLock(AssertLock& lock);
void EnterAssertLock(AssertLock& lock);
void LeaveAssertLock(AssertLock& lock);

bool IsDebuggerAttached();

// Does nothing where the system has no such output.
void SendToDebugger(const char* text);

// Null where the system has no dialogs.
AssertDialog BuiltInAssertDialog();

// Ends the process without running destructors: other threads may still use what those would destroy.
[[noreturn]] void EndProcessAtOnce(int exitCode);

} // namespace Platform
