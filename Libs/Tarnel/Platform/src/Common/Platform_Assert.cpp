#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

namespace Platform {
namespace {

constexpr char ReportSeparator[] = "\n----------------------------------------------------------\n";

// Modules built elsewhere rely on these places; docs/assertions.md has them all.
static_assert(offsetof(AssertState, size) == 64 && offsetof(AssertState, handlers) == 96 &&
              offsetof(AssertState, report) == 120 && sizeof(AssertState) == 120 + AssertReportSize);
static_assert(offsetof(BugState, lastKind) == 12 && offsetof(BugState, lastExpression) == 280 &&
              sizeof(BugState) == 792);

// One failed check. No text is null.
struct Failure {
    AssertKind kind;
    const char* sourceUnit;
    int line;
    const char* expression;
    const char* message;
};

void WriteToStandardError(const char* record, std::size_t length) {
    std::fwrite(record, 1, length, stderr);
    std::fflush(stderr);
}

// Zero-filled and never destroyed: checks fail in static constructors and destructors too.
constinit AssertState g_state = {};
constinit BugState g_bugState = {};
constinit AssertRecordOutput g_recordOutput = {&WriteToStandardError, [] {}};
constinit char g_text[AssertReportSize + sizeof(ReportSeparator)] = {}; // guarded by the state's lock

class AssertGuard {
public:
    explicit AssertGuard(AssertState& state) : m_state(state) { AssertSystem::EnterLock(m_state.lock); }
    ~AssertGuard() { AssertSystem::LeaveLock(m_state.lock); }
    AssertGuard(const AssertGuard&) = delete; // one leave for one enter
    AssertGuard& operator=(const AssertGuard&) = delete;

private:
    AssertState& m_state;
};

// Marks that a question is open, until it is answered or the handler throws.
class Asking {
public:
    explicit Asking(AssertState& state) : m_state(state) { m_state.asking = 1; }
    ~Asking() { m_state.asking = 0; }
    Asking(const Asking&) = delete; // one end for one beginning
    Asking& operator=(const Asking&) = delete;

private:
    AssertState& m_state;
};

bool SetDefaults() {
    AssertSystem::InitializeLock(g_state.lock);
    g_state.size = sizeof(AssertState);
    g_state.writeToDebugger = 1;
    g_state.writeToLog = 1;
    g_state.logDataErrors = 1;
    g_state.dialog = AssertSystem::BuiltInDialog(); // asked only if a program switches dialogs on
    g_bugState.size = sizeof(BugState);
    g_bugState.lastKind = -1;
    return true;
}

void CountFailure(const Failure& failure) {
    const auto kind = static_cast<int>(failure.kind);
    ++g_bugState.failedCount[kind];
    g_bugState.lastKind = kind;
    g_bugState.lastLine = failure.line;
    std::snprintf(g_bugState.lastSourceUnit, sizeof(g_bugState.lastSourceUnit), "%s", failure.sourceUnit);
    std::snprintf(g_bugState.lastExpression, sizeof(g_bugState.lastExpression), "%s", failure.expression);
}

// What the dialog and the debugger show.
void FormatReport(const Failure& failure) {
    const LocalTime time = CurrentLocalTime();
    const auto field = [](int value) { return static_cast<unsigned>(value); };
    if (failure.kind == AssertKind::Assert) {
        std::snprintf(g_state.report, sizeof(g_state.report),
                      "Assert Failed\r\n\r\nFile:  %s\r\nLine:  %d\r\nExpression:  %s\r\nMessage:  %s\r\n"
                      "Time: %u/%u/%u  %u:%02u:%02u\r\n\r\n",
                      failure.sourceUnit, failure.line, failure.expression, failure.message,
                      field(time.month), field(time.day), field(time.year), field(time.hour),
                      field(time.minute), field(time.second));
    } else if (AssertSystem::IsDebuggerAttached()) {
        std::snprintf(g_state.report, sizeof(g_state.report),
                      "Data Error Occurred\r\n\r\nFile:  %s\r\nLine:  %d\r\nExpression:  %s\r\n"
                      "Message:\r\n\r\n\t%s\r\n\r\n",
                      failure.sourceUnit, failure.line, failure.expression, failure.message);
    } else {
        std::snprintf(g_state.report, sizeof(g_state.report), "%s", failure.message);
    }
}

// Never through LogWrite: a check may fail inside the log or inside a sink, which would then wait for itself.
void WriteRecord(const Failure& failure) {
    const int prefix = std::snprintf(g_text, sizeof(g_text), "%s", TimePrefix().text);
    const auto start = static_cast<std::size_t>(prefix);
    const std::size_t room = sizeof(g_text) - start - 1; // leaves one byte for the line end
    const int length = std::snprintf(g_text + start, room, " %s File=%s Line=%d Expression=%s Message=%s",
                                     failure.kind == AssertKind::Assert ? "ASSERT" : "DATA ERROR",
                                     failure.sourceUnit, failure.line, failure.expression, failure.message);
    std::size_t end = std::min(static_cast<std::size_t>(std::max(length, 0)), room - 1);
    end = start + MaskControls(g_text + start, end);
    g_text[end++] = '\n';
    g_recordOutput.write(g_text, end);
}

void Report(const Failure& failure) {
    FormatReport(failure);
    if (g_state.writeToLog && (failure.kind == AssertKind::Assert || g_state.logDataErrors)) {
        WriteRecord(failure);
    }
    if (g_state.writeToDebugger) {
        std::snprintf(g_text, sizeof(g_text), "%s%s", g_state.report, ReportSeparator);
        AssertSystem::SendToDebugger(g_text);
    }
}

bool CanAsk(AssertKind kind) {
    return g_state.showDialogs && (g_state.handlers[static_cast<int>(kind)] || g_state.dialog);
}

int Ask(const Failure& failure) {
    if (g_state.asking) { // a handler or the dialog failed a check itself
        return AssertAnswer_IgnoreOnce;
    }
    const Asking asking(g_state);
    const auto kind = static_cast<int>(failure.kind);
    const AssertHandler handler = g_state.handlers[kind];
    return handler ? handler(failure.sourceUnit, failure.line, failure.expression, failure.message)
                   : g_state.dialog(g_state.report, kind);
}

// The return value asks the site to break into the debugger.
bool ActOn(int answer, const Failure& failure, std::atomic_ref<bool> ignoreAlways) {
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
        g_state.showDialogs = 0;
        g_state.writeToLog = 0;
        g_recordOutput.flush(); // the lines before the failure must not be lost
        AssertSystem::EndProcess(1);
    default: {
        char message[80];
        std::snprintf(message, sizeof(message), "Unknown return from DisplayAssertDialog %d", answer);
        WriteRecord({AssertKind::Assert, failure.sourceUnit, failure.line, failure.expression, message});
        return false;
    }
    }
}

} // namespace

bool AssertFailed(const char* expression, const char* message, const char* sourceUnit, int line,
                  bool* ignoreAlways, AssertKind kind) {
    const Failure failure{kind, sourceUnit ? sourceUnit : "", line, expression ? expression : "",
                          message ? message : ""};
    const AssertGuard guard(*EXP_GetAssertState());
    CountFailure(failure);
    const std::atomic_ref<bool> siteFlag(*ignoreAlways);
    if (g_state.showDialogs || g_state.writeToDebugger || g_state.writeToLog) {
        Report(failure);
        if (CanAsk(kind)) {
            return ActOn(Ask(failure), failure, siteFlag);
        }
    }
    siteFlag = g_state.defaultIgnoreAlways != 0;
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

void SetAssertRecordOutput(const AssertRecordOutput& output) {
    const AssertGuard guard(*EXP_GetAssertState());
    g_recordOutput = output;
}

} // namespace Platform

Platform::AssertState* EXP_GetAssertState() {
    static const bool isReady = Platform::SetDefaults();
    static_cast<void>(isReady);
    return &Platform::g_state;
}

Platform::BugState* EXP_GetBugState() {
    static_cast<void>(EXP_GetAssertState());
    return &Platform::g_bugState;
}
