#include "Tools/SampleGame/src/CrashHandler.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>

#include <windows.h>
// dbghelp.h needs windows.h first
#include <dbghelp.h>

#include "Tools/SampleGame/src/CrashContext.h"
#include "Tools/SampleGame/src/Files.h"
#include "Tools/SampleGame/src/HeaderText.h"

namespace SampleGame {

namespace {

// The handler works in a broken process, so what it needs is ready before. Written by the main thread only.
SubmissionSettings g_settings;
std::string g_log;
std::string g_terminateMessage; // replaces the crash's own after an unhandled C++ exception

HeaderFields DescribeSubmission() {
    HeaderFields fields;
    wchar_t host[256] = {};
    DWORD hostSize = 256;
    fields.host = GetComputerNameW(host, &hostSize) ? Narrow(host) : "unknown";
    SYSTEMTIME now;
    GetSystemTime(&now);
    char utc[40];
    std::snprintf(utc, sizeof(utc), "%04u-%02u-%02uT%02u:%02u:%02uZ", now.wYear, now.wMonth, now.wDay,
                  now.wHour, now.wMinute, now.wSecond);
    fields.time = utc;
    fields.sessionTime = std::time(nullptr);
    fields.sessionHash = (uint64_t{GetCurrentProcessId()} << 32) ^ GetTickCount64();
    fields.dumpFile = g_settings.name + "_Minidump.dmp";
    fields.logFile = g_settings.name + ".log";
    for (uint32_t number = 1; number <= g_settings.attachmentCount; ++number) {
        fields.attachments.push_back("attachment" + std::to_string(number) + ".txt");
    }
    return fields;
}

bool WriteMinidump(const std::string& path, EXCEPTION_POINTERS& exception) {
    void* const file = CreateEmptyFile(path);
    MINIDUMP_EXCEPTION_INFORMATION information = {GetCurrentThreadId(), &exception, FALSE};
    const bool isWritten = file && MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file,
                                                     MiniDumpNormal, &information, nullptr, nullptr);
    return file && CloseFlushed(file) && isWritten;
}

// Lines that name the attachment, cut at size bytes.
std::string AttachmentContent(uint32_t number, uint64_t size) {
    std::string content;
    content.reserve(size + 64);
    for (uint32_t line = 1; content.size() < size; ++line) {
        content += "attachment " + std::to_string(number) + " line " + std::to_string(line) + "\n";
    }
    content.resize(size);
    return content;
}

// Minidump, log and attachments, then header.json, which is made read-only once everything is on the disk: a
// folder without that mark is never taken. Returns "" or what failed.
std::string WriteSubmission(EXCEPTION_POINTERS& exception) {
    CrashContext crash = CaptureContext(exception);
    if (!g_terminateMessage.empty()) {
        crash.message = g_terminateMessage;
    }
    const std::string folder = g_settings.dumpsFolder + "\\" + g_settings.name;
    const std::string header = folder + "\\header.json";
    const HeaderFields fields = DescribeSubmission();
    if (!MakeFolders(folder)) {
        return "Failed to create " + folder;
    }
    const std::string inFolder = folder + "\\";
    if (!WriteMinidump(inFolder + fields.dumpFile, exception)) {
        return "Failed to write the minidump";
    }
    if (!WriteWholeFile(inFolder + fields.logFile, g_log)) {
        return "Failed to write the log";
    }
    uint32_t number = 0;
    for (const std::string& name : fields.attachments) {
        if (!WriteWholeFile(inFolder + name, AttachmentContent(++number, g_settings.attachmentSize))) {
            return "Failed to write " + name;
        }
    }
    if (g_settings.failInHandler) {
        TerminateProcess(GetCurrentProcess(), EXIT_FAILURE);
    }
    return WriteWholeFile(header, HeaderText(fields, crash)) && MakeReadOnly(header)
               ? ""
               : "Failed to write the header";
}

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
    const std::string failure = WriteSubmission(*exception);
    LogLine(failure.empty() ? "wrote submission " + g_settings.name : "no submission: " + failure);
    return EXCEPTION_EXECUTE_HANDLER;
}

// abort() would end the process silently: it becomes an exception like any other.
void OnAbort(int) {
    RaiseException(AbortCode, EXCEPTION_NONCONTINUABLE, 0, nullptr);
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

void InstallCrashHandler(const SubmissionSettings& settings) {
    g_settings = settings;
    ULONG stackForHandler = 256 << 10; // the minidump needs most of it
    SetThreadStackGuarantee(&stackForHandler);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter(&OnUnhandledException);
    std::signal(SIGABRT, &OnAbort);
    std::set_terminate(&OnTerminate);
}

void LogLine(const std::string& line) {
    g_log += line + "\n";
    if (!g_settings.quiet) {
        std::printf("SampleGame: %s\n", line.c_str());
        std::fflush(stdout);
    }
}

} // namespace SampleGame
