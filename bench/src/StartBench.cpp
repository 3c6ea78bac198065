// From the start of the program, as the system has it, to its first scan of the dumps folder.
#include <windows.h>

#include <algorithm>
#include <string>

#include "bench/src/Bench.h"

namespace {

constexpr double FirstSleep = 0.25; // seconds; TimeBetweenChecks at its default
constexpr double Allowed = 0.1;     // for everything before it

double Seconds(const FILETIME& time) {
    return (time.dwHighDateTime * 4294967296.0 + time.dwLowDateTime) * 1e-7;
}

double Now() {
    FILETIME now = {};
    GetSystemTimePreciseAsFileTime(&now);
    return Seconds(now);
}

double CreationTime(HANDLE process) {
    FILETIME created = {};
    FILETIME other = {};
    if (!GetProcessTimes(process, &created, &other, &other, &other)) {
        Bench::Fail("the system does not tell when the program started");
    }
    return Seconds(created);
}

// A pipe for the program's output. The reading end is the caller's, the writing end is to be closed.
struct Pipe {
    HANDLE read = nullptr;
    HANDLE write = nullptr;
};

Pipe OpenPipe() {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    Pipe pipe;
    if (!CreatePipe(&pipe.read, &pipe.write, &inherited, 0)) {
        Bench::Fail("no pipe");
    }
    SetHandleInformation(pipe.read, HANDLE_FLAG_INHERIT, 0);
    return pipe;
}

// The moment at which the text stands in what the program writes.
double WaitFor(HANDLE output, const std::string& text) {
    std::string said;
    char room[4096];
    DWORD length = 0;
    while (ReadFile(output, room, sizeof room, &length, nullptr) && length > 0) {
        said.append(room, length);
        if (said.find(text) != std::string::npos) {
            return Now();
        }
    }
    Bench::Fail("the program did not scan:\n" + said);
}

double StartToFirstScan(const std::string& commandLine) {
    const Pipe pipe = OpenPipe();
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = pipe.write;
    startup.hStdError = pipe.write;
    PROCESS_INFORMATION process = {};
    std::string line = commandLine; // the call may write to it
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &process)) {
        Bench::Fail("the program could not be started: " + commandLine);
    }
    CloseHandle(pipe.write);
    const double scanned = WaitFor(pipe.read, " to pending folder list");
    const double started = CreationTime(process.hProcess);
    TerminateProcess(process.hProcess, 0);
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(pipe.read);
    return scanned - started;
}

void WriteText(const std::string& path, const std::string& text) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    if (file == INVALID_HANDLE_VALUE ||
        !WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr)) {
        Bench::Fail("could not write " + path);
    }
    CloseHandle(file);
}

// Every process of the program, and a package that is complete; the only one who could take it away asks for
// permission first.
std::string PrepareAgent(const std::string& folder) {
    for (const char* made : {"", "\\packagedDumps", R"(\packagedDumps\one)"}) {
        CreateDirectoryA((folder + made).c_str(), nullptr);
    }
    WriteText(folder + R"(\packagedDumps\one\submission.pkg)", "x");
    SetFileAttributesA((folder + R"(\packagedDumps\one\submission.pkg)").c_str(), FILE_ATTRIBUTE_READONLY);
    WriteText(
        folder + "\\agent.json",
        R"({"Application":{"Processes":{"Watcher":["Dumps","Packages"],"Packager":["Packager"],)"
        R"("UploaderS3":["Uploader"],"DiskQuota":["DiskQuota"],"ProcessMonitor":["ProcessMonitor"],)"
        R"("SingletonAssurance":["SingletonAssurance"],"Shutdowner":["Shutdowner"]},)"
        R"("Components":["CloudComponent"],"ApplicationFolder":""},"Dumps":{"Folder":"dumps"},)"
        R"("Packages":{"Folder":"packagedDumps","SentinelFile":"submission.pkg"},)"
        R"("Packager":{"WatcherName":"Dumps"},"Uploader":{"WatcherName":"Packages","BucketName":"none",)"
        R"("AccessKey":"A","SecretKey":"S","EndpointOverride":"http://127.0.0.1:1",)"
        R"("TimeBetweenChecks":60000},"DiskQuota":{},"SingletonAssurance":{},"Shutdowner":{},)"
        R"("ProcessMonitor":{"WatchedApplications":["StartBench.exe"]}})");
    return " -config=" + folder + "\\agent.json -appFolder=" + folder;
}

std::string ProgramBeside() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    const std::string own = path;
    return own.substr(0, own.find_last_of('\\') + 1) + "MorvaneCrashReporter.exe";
}

} // namespace

int main(int argc, char** argv) {
    const Bench::Options options = Bench::ReadOptions(argc, argv);
    const std::string commandLine = ProgramBeside() + PrepareAgent(options.scratch + "\\start");
    double best = StartToFirstScan(commandLine);
    double worst = best;
    for (int i = options.quick ? 8 : 0; i < 10; ++i) {
        const double seconds = StartToFirstScan(commandLine);
        best = std::min(best, seconds);
        worst = std::max(worst, seconds);
    }
    Bench::Note("the slowest start took " + std::to_string(static_cast<int>(worst * 1000)) + " ms");
    Bench::Report("start to first scan, first sleep and 100 ms allowed", "ms", best * 1000,
                  (FirstSleep + Allowed) * 1000, Bench::Goal::AtMost, 1);
    return 0;
}
