#include "Tools/PackageTool/src/ConnectCheck.h"

// Of a build without a client of the store, as on Linux.
ExitCode TryUploaders(const std::string& file, std::string_view) {
    Console::PrintError(file, "this build can't connect: use PackageTool.exe");
    return ExitCode::NotReadOrWritten;
}
