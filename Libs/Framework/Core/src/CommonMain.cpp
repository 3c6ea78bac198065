#include "Libs/Framework/Core/src/CommonMain.h"

#include <cstring>
#include <cwchar>

#include <windows.h>

#include "Libs/Framework/Core/src/ApplicationFolders.h"
#include "Libs/Framework/Core/src/CommandLine.h"
#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/LogFile.h"
#include "Libs/Framework/Core/src/OutputQueue.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

namespace {

// Never destroyed: entries and failed checks may come until the process ends.
struct Outputs {
    OutputQueue queue;
    HANDLE standard = GetStdHandle(STD_OUTPUT_HANDLE); // taken before a console of our own replaces them
    HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
};

Outputs& TheOutputs() {
    static auto& outputs = *new Outputs;
    return outputs;
}

// Text ends at its terminator, as it would with "%s".
void PrintEntry(const wchar_t* logName, const char* data, uint32_t length, int) {
    Outputs& outputs = TheOutputs();
    const bool isError = logName && std::wcscmp(logName, Platform::ErrorLog) == 0;
    const std::string_view text(data, strnlen(data, length));
    outputs.queue.Write(isError ? outputs.error : outputs.standard, text);
    LogFile::OfProcess().Write(text);
}

void PrintRecord(const char* record, std::size_t length) {
    TheOutputs().queue.Write(TheOutputs().error, {record, length});
    LogFile::OfProcess().Write({record, length});
}

// Prints every log entry while it lives: entries of the error log to standard error, the others to standard
// output, byte for byte. A launcher that does not read its pipes holds nothing: see OutputQueue. Records of
// failed checks are printed in the same way. The destructor waits a second at most for lines that are not yet
// written; later ones are lost. One per process, on the main thread.
class ConsoleLogSink {
public:
    ConsoleLogSink() {
        TheOutputs();
        EXP_SetLogEventCallback(&PrintEntry);
        Platform::SetAssertRecordOutput({&PrintRecord, [] { TheOutputs().queue.Close(); }});
    }
    ~ConsoleLogSink() { TheOutputs().queue.Close(); }
    ConsoleLogSink(const ConsoleLogSink&) = delete; // it owns the process's outputs
    ConsoleLogSink& operator=(const ConsoleLogSink&) = delete;
};

void SetUpLogRoot(int argc, const char** argv) {
    const std::string folder = ResolveLogFolder(argc, argv, ".");
    if (const ResultCode result = SetLogRootFolder(folder); !result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to set log root folder to \"%s\". Error=%s", folder.c_str(),
                     result.Text());
    }
}

void ReportMisspeltOptions(int argc, const char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (const std::string_view meant = CommandLine::ProbablyMeant(argv[i]); !meant.empty()) {
            PLATFORM_LOG(Platform::ErrorLog, " Unknown option \"%s\", did you mean \"%s\"? -help says more.",
                         Platform::ShownName(argv[i]).text, meant.data());
        }
    }
}

void LogVersion(ApplicationBase& application) {
    PlatformHelpers::ModuleVersion version;
    uint32_t changelist = 0;
    const ResultCode result = ExceptionToResult([&] { return application.GetVersion(version, changelist); });
    if (!result) {
        PLATFORM_LOG(Platform::InfoLog, " Failed to get version information. Error=%s", result.Text());
    }
    PLATFORM_LOG(Platform::InfoLog, " %s version %u.%u.%u.%u - %u", GetApplicationDisplayName(),
                 version.major, version.minor, version.build, version.revision, changelist);
}

std::shared_ptr<ApplicationBase> MakeApplication(int argc, const char** argv) {
    std::shared_ptr<ApplicationBase> application;
    const ResultCode result = ExceptionToResult([&]() -> ResultCode {
        application = CreateApplication(argc, argv);
        return Platform::Success;
    });
    return result ? application : nullptr;
}

} // namespace

int CommonMain(int argc, const char** argv) {
    GetMainThreadId();
    const ConsoleLogSink sink; // outlives the application, which logs until it is destroyed
    SetUpLogRoot(argc, argv);
    const std::shared_ptr<ApplicationBase> application = MakeApplication(argc, argv);
    if (!application) {
        return NoApplication;
    }
    LogVersion(*application);
    ReportMisspeltOptions(argc, argv);

    PLATFORM_LOG(Platform::InfoLog, " initializing application...");
    ResultCode result = ExceptionToResult([&] { return application->Initialize(argc, argv); });
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Initialization failure. Error=%s", result.Text());
        return InitializeFailed;
    }
    PLATFORM_LOG(Platform::InfoLog, " running application processes...");
    result = ExceptionToResult([&] { return application->Run(); });
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Run failure. Error=%s", result.Text());
        return RunFailed;
    }
    PLATFORM_LOG(Platform::InfoLog, " shutting down application processes...");
    result = ExceptionToResult([&] { return application->Shutdown(); });
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Shutdown failure. Error=%s", result.Text());
        return ShutdownFailed;
    }
    PLATFORM_LOG(Platform::InfoLog, " exiting application...");
    return Done;
}
