#include "Libs/Framework/Application/src/UsageText.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/CommandLine.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

namespace {

constexpr char Options[] =
    "\r\n"
    "-config=FILE\tthe configuration; else the program's path with .json appended\r\n"
    "-appFolder=FOLDER\tthe application folder; else the configured one in Documents\r\n"
    "-log=FOLDER\tfolder of the configured LogFile; else the application folder\r\n"
    "-console\topens a console with the log; Q in it ends the program if it has a Shutdowner\r\n"
    "-process=NAME\tone more game to watch; may be repeated\r\n"
    "-help, -version\tthis text, or its first line\r\n";

bool HasAny(int argc, const char* const* argv, std::initializer_list<const char*> flags) {
    return std::ranges::any_of(flags,
                               [=](const char* flag) { return CommandLine::HasFlag(argc, argv, flag); });
}

std::string Version() {
    PlatformHelpers::ModuleVersion version;
    uint32_t changelist = 0;
    if (!PlatformHelpers::GetModuleVersion(Platform::OwnProgramPath(), version, changelist)) {
        return "of unknown version";
    }
    char text[80];
    std::snprintf(text, sizeof(text), "%u.%u.%u.%u (%u)", version.major, version.minor, version.build,
                  version.revision, changelist);
    return text;
}

} // namespace

std::string UsageText::Answer(int argc, const char* const* argv) {
    const bool isHelp = HasAny(argc, argv, {"-?", "/?", "-h", "-help", "--help"});
    if (!isHelp && !HasAny(argc, argv, {"-version", "--version"})) {
        return {};
    }
    const std::string firstLine = std::string(GetApplicationDisplayName()) + " " + Version() + "\r\n";
    return isHelp ? firstLine + Options : firstLine;
}

// A program with windows of its own has no console, even when it is started from one.
void UsageText::Show(const std::string& text) {
    DWORD written = 0;
    HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    if (output && output != INVALID_HANDLE_VALUE &&
        WriteFile(output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr)) {
        return;
    }
    std::wstring wide;
    if (Platform::ToSystemText(text, wide) == Platform::NoError) {
        MessageBoxW(nullptr, wide.c_str(), L"Morvane Crash Reporter", MB_OK | MB_ICONINFORMATION);
    }
}
