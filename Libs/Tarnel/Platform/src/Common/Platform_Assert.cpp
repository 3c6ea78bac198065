#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>

#include "Libs/Tarnel/Platform/src/Common/Platform_AssertReport.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_AssertState.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_AssertSystem.h"

namespace Platform {
namespace {

constexpr char ReportSeparator[] = "\n----------------------------------------------------------\n";

// Modules built elsewhere rely on these places; docs/assertions.md has them all.
static_assert(offsetof(AssertState, size) == 64 && offsetof(AssertState, handlers) == 96 &&
              offsetof(AssertState, report) == 120 && sizeof(AssertState) == 120 + AssertReportSize);
static_assert(offsetof(BugState, lastKind) == 12 && offsetof(BugState, lastExpression) == 280 &&
              sizeof(BugState) == 792);

// Zero-filled and never destroyed: checks fail in static constructors and destructors too.
constinit AssertState g_assertState = {};
constinit BugState g_bugState = {};
constinit char g_debuggerText[AssertReportSize + sizeof(ReportSeparator)] = {};

class AssertGuard {
public:
    explicit AssertGuard(AssertState& state) : m_state(state) { EnterAssertLock(m_state.lock); }
    ~AssertGuard() { LeaveAssertLock(m_state.lock); }
    AssertGuard(const AssertGuard&) = delete; // one leave for one enter
    AssertGuard& operator=(const AssertGuard&) = delete;

private:
    AssertState& m_state;
};

bool SetDefaults(AssertState& state, BugState& bugs) {
    InitializeAssertLock(state.lock);
    state.size = sizeof(AssertState);
    state.writeToDebugger = 1;
    state.writeToLog = 1;
    state.logDataErrors = 1;
    state.dialog = BuiltInAssertDialog(); // asked only where a program switches dialogs on
    bugs.size = sizeof(BugState);
    bugs.lastKind = -1;
    return true;
}

void CountFailure(BugState& bugs, const AssertFailure& failure) {
    const auto kind = static_cast<int>(failure.kind);
    ++bugs.failedCount[kind];
    bugs.lastKind = kind;
    bugs.lastLine = failure.line;
    std::snprintf(bugs.lastSourceUnit, sizeof(bugs.lastSourceUnit), "%s", failure.sourceUnit);
    std::snprintf(bugs.lastExpression, sizeof(bugs.lastExpression), "%s", failure.expression);
}

// The record goes straight to standard error and never through LogWrite: a check may fail inside the log or
// inside a sink, where logging would wait for itself.
void WriteRecord(const char* tag, const AssertFailure& failure, const LocalTime& time) {
    std::fprintf(stderr, "%s %s File=%s Line=%d Expression=%s Message=%s\n", FormatTimePrefix(time).text, tag,
                 failure.sourceUnit, failure.line, failure.expression, failure.message);
    std::fflush(stderr);
}

void Report(AssertState& state, const AssertFailure& failure) {
    const LocalTime time = CurrentLocalTime();
    FormatAssertReport(state.report, sizeof(state.report), failure, time, IsDebuggerAttached());
    const bool isAssert = failure.kind == AssertKind::Assert;
    if (state.writeToLog && (isAssert || state.logDataErrors)) {
        WriteRecord(isAssert ? "ASSERT" : "DATA ERROR", failure, time);
    }
    if (state.writeToDebugger) {
        std::snprintf(g_debuggerText, sizeof(g_debuggerText), "%s%s", state.report, ReportSeparator);
        SendToDebugger(g_debuggerText);
    }
}

bool CanAsk(const AssertState& state, AssertKind kind) {
    return state.showDialogs && (state.handlers[static_cast<int>(kind)] || state.dialog);
}

int Ask(AssertState& state, const AssertFailure& failure) {
    if (state.asking) { // a handler or the dialog failed a check itself
        return AssertAnswer_IgnoreOnce;
    }
    state.asking = 1;
    const AssertHandler handler = state.handlers[static_cast<int>(failure.kind)];
    const int answer = handler
                           ? handler(failure.sourceUnit, failure.line, failure.expression, failure.message)
                           : state.dialog(state.report, static_cast<int>(failure.kind));
    state.asking = 0;
    return answer;
}

// The return value asks the site to break into the debugger.
bool ActOn(int answer, AssertState& state, const AssertFailure& failure, std::atomic_ref<bool> ignoreAlways) {
    switch (answer) {
    case AssertAnswer_Debug:
        return true;
    case AssertAnswer_IgnoreOnce:
        ignoreAlways = false;
        return false;
    case AssertAnswer_IgnoreAlways:
        ignoreAlways = true;
        return false;
    case AssertAnswer_Abort:
        state.showDialogs = 0;
        state.writeToLog = 0;
        std::fflush(nullptr); // what was logged before belongs to the story
        EndProcessAtOnce(1);
    default: {
        char message[80];
        std::snprintf(message, sizeof(message), "Unknown return from DisplayAssertDialog %d", answer);
        AssertFailure unknown = failure;
        unknown.message = message;
        WriteRecord("ASSERT", unknown, CurrentLocalTime());
        return false;
    }
    }
}

} // namespace

bool AssertFailed(const char* expression, const char* message, const char* sourceUnit, int line,
                  bool* ignoreAlways, AssertKind kind) {
    const AssertFailure failure{kind, sourceUnit ? sourceUnit : "", line, expression ? expression : "",
                                message ? message : ""};
    AssertState& state = *EXP_GetAssertState();
    const AssertGuard guard(state);
    CountFailure(g_bugState, failure);
    const std::atomic_ref<bool> siteFlag(*ignoreAlways);
    if (state.showDialogs || state.writeToDebugger || state.writeToLog) {
        Report(state, failure);
        if (CanAsk(state, kind)) {
            return ActOn(Ask(state, failure), state, failure, siteFlag);
        }
    }
    siteFlag = state.defaultIgnoreAlways != 0;
    return false;
}

bool AssertFailedFormat(const char* expression, const char* sourceUnit, int line, bool* ignoreAlways,
                        AssertKind kind, const char* format, ...) {
    char message[2048];
    va_list arguments = {};
    va_start(arguments, format);
    const int length = std::vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);
    return AssertFailed(expression, length < 0 ? format : message, sourceUnit, line, ignoreAlways, kind);
}

} // namespace Platform

Platform::AssertState* EXP_GetAssertState() {
    static const bool isReady = Platform::SetDefaults(Platform::g_assertState, Platform::g_bugState);
    static_cast<void>(isReady);
    return &Platform::g_assertState;
}

Platform::BugState* EXP_GetBugState() {
    static_cast<void>(EXP_GetAssertState());
    return &Platform::g_bugState;
}
