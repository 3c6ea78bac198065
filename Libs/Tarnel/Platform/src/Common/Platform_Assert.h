#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "Libs/Tarnel/Platform/src/Common/Platform_Printf.h"

// Checks for programming errors (assert) and for bad data (data error), live in every build. Each site has a
// flag of its own: once it is set, the site stays silent for the rest of the run. A failed check is reported
// and the program continues, so the code after a check must cope with the failure.

namespace Platform {

enum class AssertKind : int { Assert = 0, DataError = 1 };

// Reports a failed check as the process's assertion state says. True asks the site to break into the
// debugger. message may be null. Any thread; calls are serialised.
[[nodiscard]] bool AssertFailed(const char* expression, const char* message, const char* sourceUnit, int line,
                                bool* ignoreAlways, AssertKind kind);

// As AssertFailed, with the message formatted by printf rules and cut at 2047 bytes.
[[nodiscard]] bool AssertFailedFormat(const char* expression, const char* sourceUnit, int line,
                                      bool* ignoreAlways, AssertKind kind, const char* format, ...)
    PLATFORM_PRINTF(6, 7);

inline constexpr uint32_t AssertReportSize = 64 * 1024;

// What a handler or the dialog answers.
enum AssertAnswer : int {
    AssertAnswer_Debug = 1,        // break into the debugger
    AssertAnswer_IgnoreOnce = 2,   // continue
    AssertAnswer_IgnoreAlways = 3, // continue, and keep the site silent from now on
    AssertAnswer_Abort = 4,        // end the process with exit code 1
};

// Replaces the dialog for one kind of check. Returns an AssertAnswer. Called inside the state's lock; a check
// that fails meanwhile on the same thread is recorded and counts as ignored once.
using AssertHandler = int (*)(const char* sourceUnit, int line, const char* expression, const char* message);

// The built-in dialog: shows report and returns an AssertAnswer. kind is an AssertKind.
using AssertDialog = int (*)(const char* report, int kind);

// Room for the operating system's recursive lock: on Windows a CRITICAL_SECTION at the start.
struct AssertLock {
    alignas(8) unsigned char storage[64];
};

// The state of the checks, one per process. Modules loaded into the process reach it through the
// exported functions, so the layout is that of C and switches are 0 or 1. Lives as long as the process.
// Everything after lock is read and written inside it, except that the switches may be set at start-up
// before other threads run.
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
    AssertDialog dialog;           // null if there is none; then nobody is asked
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

// Receives the one-line records of failed checks; standard error until a program sets its own. Called inside
// the state's lock, and must not fail a check. flush is called before the process is aborted.
struct AssertRecordOutput {
    void (*write)(const char* record, std::size_t length);
    void (*flush)();
};
void SetAssertRecordOutput(const AssertRecordOutput& output);

// What the checks need from the operating system.
namespace AssertSystem {

void InitializeLock(AssertLock& lock);
void EnterLock(AssertLock& lock);
void LeaveLock(AssertLock& lock);
bool IsDebuggerAttached();
void SendToDebugger(const char* text); // does nothing without such an output
AssertDialog BuiltInDialog();          // null if the system has no dialogs

// Runs no destructors: other threads may still use what those would destroy.
[[noreturn]] void EndProcess(int exitCode);

} // namespace AssertSystem

// __FILE__ as the reports show it: forward slashes and no extension. N is the literal's size.
template <std::size_t N>
struct SourceUnit {
    char text[N] = {};
    consteval explicit SourceUnit(const char (&file)[N]) {
        std::size_t end = N - 1;
        for (std::size_t i = 0; i < N - 1; ++i) {
            text[i] = file[i] == '\\' ? '/' : file[i];
            if (file[i] == '.') {
                end = i;
            }
        }
        text[end] = 0;
    }
};

} // namespace Platform

// Never null.
extern "C" Platform::AssertState* EXP_GetAssertState();
extern "C" Platform::BugState* EXP_GetBugState();

// Breaks at the check itself, so that the debugger shows its frame and can continue.
#if defined(_MSC_VER)
#define PLATFORM_BREAK() __debugbreak()
#elif defined(__x86_64__)
#define PLATFORM_BREAK() __asm__ volatile("int3")
#else
#define PLATFORM_BREAK() __builtin_trap()
#endif

#define PLATFORM_CHECK_IMPL(condition, kind, report)                                        \
    do {                                                                                    \
        static bool s_ignoreAlways = false;                                                 \
        if (!(condition) && !::std::atomic_ref<bool>(s_ignoreAlways).load()) [[unlikely]] { \
            static constexpr ::Platform::SourceUnit<sizeof(__FILE__)> sourceUnit(__FILE__); \
            constexpr auto checkKind = ::Platform::AssertKind::kind;                        \
            if (report) {                                                                   \
                PLATFORM_BREAK();                                                           \
            }                                                                               \
        }                                                                                   \
    } while (false)

// The reported expression is the condition's own text. Use the _TEXT form if the text and the code differ.
#define PLATFORM_ASSERT(condition) PLATFORM_ASSERT_TEXT(condition, #condition)

#define PLATFORM_ASSERT_TEXT(condition, expressionText)                                              \
    PLATFORM_CHECK_IMPL(condition, Assert,                                                           \
                        ::Platform::AssertFailed(expressionText, nullptr, sourceUnit.text, __LINE__, \
                                                 &s_ignoreAlways, checkKind))

// With a message by printf rules: PLATFORM_ASSERT_MESSAGE(size < limit, "Too large: %u", size);
#define PLATFORM_ASSERT_MESSAGE(condition, ...) \
    PLATFORM_ASSERT_TEXT_MESSAGE(condition, #condition, __VA_ARGS__)

#define PLATFORM_ASSERT_TEXT_MESSAGE(condition, expressionText, ...)                              \
    PLATFORM_CHECK_IMPL(condition, Assert,                                                        \
                        ::Platform::AssertFailedFormat(expressionText, sourceUnit.text, __LINE__, \
                                                       &s_ignoreAlways, checkKind, __VA_ARGS__))

// Bad data rather than a bad program.
#define PLATFORM_DATA_ERROR(condition, ...)                                                   \
    PLATFORM_CHECK_IMPL(condition, DataError,                                                 \
                        ::Platform::AssertFailedFormat(#condition, sourceUnit.text, __LINE__, \
                                                       &s_ignoreAlways, checkKind, __VA_ARGS__))
