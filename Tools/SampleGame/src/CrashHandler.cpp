#include "Tools/SampleGame/src/CrashHandler.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "Tools/SampleGame/src/CrashContext.h"
#include "Tools/SampleGame/src/Submission.h"

#include <windows.h>

namespace SampleGame {

namespace {

// The handler works while the process is broken, so what it needs stands ready. Written by the main thread
// only.
Options g_options;
std::string g_log;
std::string g_terminateMessage;

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
    const std::string failure = WriteSubmission(*exception, g_options, g_log, g_terminateMessage);
    if (failure.empty()) {
        LogLine("wrote submission " + g_options.name);
    } else {
        LogLine("no submission: " + failure);
    }
    return EXCEPTION_EXECUTE_HANDLER;
}

// abort() would end the process silently: it becomes an exception like any other.
void OnAbort(int) {
    RaiseException(g_abortCode, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}

[[noreturn]] void OnTerminate() {
    try {
        if (const std::exception_ptr current = std::current_exception()) {
            std::rethrow_exception(current);
        }
    } catch (const std::exception& exception) {
        g_terminateMessage = std::string("Unhandled C++ exception: ") + exception.what();
    } catch (...) {
        g_terminateMessage = "Unhandled C++ exception";
    }
    std::abort();
}

} // namespace

void InstallCrashHandler(const Options& options) {
    g_options = options;
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter(OnUnhandledException);
    std::signal(SIGABRT, OnAbort);
    std::set_terminate(OnTerminate);
}

void LogLine(const std::string& line) {
    g_log += line + "\n";
    if (!g_options.quiet) {
        printf("SampleGame: %s\n", line.c_str());
        fflush(stdout);
    }
}

} // namespace SampleGame
