#include "Tools/SampleGame/src/Submission.h"

#include <cstdio>
#include <ctime>

#include "Tools/SampleGame/src/CrashContext.h"
#include "Tools/SampleGame/src/Files.h"
#include "Tools/SampleGame/src/HeaderText.h"

#include <windows.h>
// dbghelp.h needs windows.h first
#include <dbghelp.h>

namespace SampleGame {

namespace {

std::string CurrentTime() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    char text[40];
    snprintf(text, sizeof(text), "%04u-%02u-%02uT%02u:%02u:%02uZ", now.wYear, now.wMonth, now.wDay, now.wHour,
             now.wMinute, now.wSecond);
    return text;
}

std::string HostName() {
    char name[256] = {};
    DWORD size = sizeof(name);
    return GetComputerNameA(name, &size) ? std::string(name, size) : "unknown";
}

bool WriteMinidump(const std::string& path, const EXCEPTION_POINTERS& exception) {
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    EXCEPTION_POINTERS pointers = exception;
    MINIDUMP_EXCEPTION_INFORMATION information = {GetCurrentThreadId(), &pointers, FALSE};
    const bool written = MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file, MiniDumpNormal,
                                           &information, nullptr, nullptr) != 0;
    return CloseHandle(file) && written;
}

HeaderFields DescribeSubmission(const std::string& name, uint32_t attachmentCount) {
    HeaderFields fields;
    fields.host = HostName();
    fields.time = CurrentTime();
    fields.sessionTime = time(nullptr);
    fields.sessionHash = (static_cast<uint64_t>(GetCurrentProcessId()) << 32) ^ GetTickCount64();
    fields.dumpFile = name + "_Minidump.dmp";
    fields.logFile = name + ".log";
    for (uint32_t number = 1; number <= attachmentCount; ++number) {
        fields.attachments.push_back("attachment" + std::to_string(number) + ".txt");
    }
    return fields;
}

bool WriteAttachments(const std::string& folder, const HeaderFields& fields, uint64_t size) {
    uint32_t number = 0;
    for (const std::string& name : fields.attachments) {
        if (!WriteWholeFile(folder + name, AttachmentContent(++number, size))) {
            return false;
        }
    }
    return true;
}

} // namespace

std::string AttachmentContent(uint32_t number, uint64_t size) {
    std::string content;
    content.reserve(size + 64);
    for (uint32_t line = 1; content.size() < size; ++line) {
        content += "attachment " + std::to_string(number) + " line " + std::to_string(line) + "\n";
    }
    content.resize(size);
    return content;
}

std::string WriteSubmission(const EXCEPTION_POINTERS& exception, const Options& options,
                            const std::string& logText, const std::string& terminateMessage) {
    CrashContext crash = CaptureContext(exception);
    if (!terminateMessage.empty()) {
        crash.message = terminateMessage;
    }
    const std::string folder = options.dumpsFolder + "\\" + options.name + "\\";
    const HeaderFields fields = DescribeSubmission(options.name, options.attachmentCount);
    if (!MakeFolders(folder.substr(0, folder.size() - 1))) {
        return "Failed to create " + folder;
    }
    if (!WriteMinidump(folder + fields.dumpFile, exception)) {
        return "Failed to write the minidump";
    }
    if (!WriteWholeFile(folder + fields.logFile, logText)) {
        return "Failed to write the log";
    }
    if (!WriteAttachments(folder, fields, options.attachmentSize)) {
        return "Failed to write the attachments";
    }
    if (options.failInHandler) {
        TerminateProcess(GetCurrentProcess(), EXIT_FAILURE);
    }
    const std::string header = folder + "header.json";
    if (!WriteWholeFile(header, HeaderText(fields, crash))) {
        return "Failed to write the header";
    }
    return MakeReadOnly(header) ? "" : "Failed to mark the header";
}

} // namespace SampleGame
