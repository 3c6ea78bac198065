#include "Tools/PackageTool/src/ConnectCheck.h"

// Of a build for Linux, which has not the agent's clients.
ExitCode TryUploaders(const std::string& file, std::string_view) {
    Console::PrintError(file, "this build can't connect: use PackageTool.exe");
    return ExitCode::NotReadOrWritten;
}
