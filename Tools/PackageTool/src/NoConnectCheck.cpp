#include "Tools/PackageTool/src/ConnectCheck.h"

// For Linux: the agent's clients of stores and signers are built for Windows alone.
ExitCode TryUploaders(const std::string& file, std::string_view) {
    Console::PrintError(file, "this build can't connect: use PackageTool.exe");
    return ExitCode::NotReadOrWritten;
}
