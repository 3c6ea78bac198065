#pragma once

#include <atomic>
#include <cstddef>

#include "Libs/Tarnel/Platform/src/Common/Platform_Printf.h"

// Checks for programming errors (assert) and for bad data (data error), live in every build. Each site has a
// flag of its own: once it is set, the site stays silent for the rest of the run. A failed check is reported
// and the program goes on after it, so the code behind a check must cope with the failure.

namespace Platform {

enum class AssertKind : int { Assert = 0, DataError = 1 };

// Reports a failed check as the process's assertion state says (see Platform_AssertState.h). True asks the
// site to break into the debugger. message may be null. Any thread; calls are serialised.
[[nodiscard]] bool AssertFailed(const char* expression, const char* message, const char* sourceUnit, int line,
                                bool* ignoreAlways, AssertKind kind);

// As AssertFailed, with the message formatted by printf rules and cut at 2047 bytes.
[[nodiscard]] bool AssertFailedFormat(const char* expression, const char* sourceUnit, int line,
                                      bool* ignoreAlways, AssertKind kind, const char* format, ...)
    PLATFORM_PRINTF(6, 7);

void BreakIntoDebugger();

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

#define PLATFORM_CHECK_IMPL(condition, kind, report)                                        \
    do {                                                                                    \
        static bool s_ignoreAlways = false;                                                 \
        if (!(condition) && !::std::atomic_ref<bool>(s_ignoreAlways).load()) [[unlikely]] { \
            static constexpr ::Platform::SourceUnit<sizeof(__FILE__)> sourceUnit(__FILE__); \
            constexpr auto checkKind = ::Platform::AssertKind::kind;                        \
            if (report) {                                                                   \
                ::Platform::BreakIntoDebugger();                                            \
            }                                                                               \
        }                                                                                   \
    } while (false)

// The reported expression is the condition's own text. Use the _TEXT form where the text and the code differ.
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
