#pragma once

#include <cstdint>

// The process-wide state behind the checks of Platform_Assert.h. Modules loaded into the process reach it
// through the exported functions, so all share one configuration: layouts are those of C, switches are 0
// or 1.
namespace Platform {

inline constexpr uint32_t AssertReportSize = 64 * 1024;

// What a handler or the dialog answers.
enum AssertAnswer : int {
    AssertAnswer_Debug = 1,        // break into the debugger
    AssertAnswer_IgnoreOnce = 2,   // go on
    AssertAnswer_IgnoreAlways = 3, // go on and keep the site silent from now on
    AssertAnswer_Abort = 4,        // end the process with exit code 1
};

// Replaces the dialog for one kind of check. Gives an AssertAnswer. Called inside the state's critical
// section; a check that fails meanwhile on the same thread is logged and counts as ignored once.
using AssertHandler = int (*)(const char* sourceUnit, int line, const char* expression, const char* message);

// The built-in dialog: shows report and gives an AssertAnswer. kind is an AssertKind.
using AssertDialog = int (*)(const char* report, int kind);

// Room for the operating system's recursive lock: on Windows a CRITICAL_SECTION at the start.
struct AssertLock {
    alignas(8) unsigned char storage[64];
};

// Lives as long as the process. Everything behind lock is read and written inside it, except that the
// switches may be set at start-up before other threads run.
struct AssertState {
    AssertLock lock;
    uint32_t size;        // of this record in bytes
    uint32_t showDialogs; // ask the kind's handler, else the dialog; off unless a program switches it on
    uint32_t writeToDebugger;
    uint32_t writeToLog;
    uint32_t logDataErrors;       // else only asserts are logged
    uint32_t defaultIgnoreAlways; // what a site's flag becomes when nobody is asked
    uint32_t asking;              // 1 while a handler or the dialog is up
    uint32_t reserved;
    AssertHandler handlers[2];     // by AssertKind, null for none
    AssertDialog dialog;           // null where there is none; then nobody is asked
    char report[AssertReportSize]; // the last one, terminated
};

// Failed checks of this run, for crash handlers and support tools. Guarded by the assertion state's lock.
struct BugState {
    uint32_t size;           // of this record in bytes
    uint32_t failedCount[2]; // by AssertKind; sites that are ignored always don't count
    int32_t lastKind;        // -1 before the first
    int32_t lastLine;
    char lastSourceUnit[260]; // both cut to fit and terminated
    char lastExpression[512];
};

} // namespace Platform

// Never null.
extern "C" Platform::AssertState* EXP_GetAssertState();
extern "C" Platform::BugState* EXP_GetBugState();
