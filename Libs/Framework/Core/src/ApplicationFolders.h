#pragma once

#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Where the application finds its configuration and works: what the command line says, else what the
// configuration says, else what follows from the program's name. Paths are UTF-8 and stay as they were given.
// Main thread.

// The option -config=, else the program's path with ".json" appended: C:\A\agent.exe gives
// C:\A\agent.exe.json.
std::string ResolveConfigPath(int argc, const char** argv);

// The option -appFolder=, else the named folder in the user's documents, else the one of the display name
// there. Empty if the system gives no documents folder; the error log then says why.
std::string ResolveApplicationFolder(int argc, const char** argv, const std::string& configuredName);

// The option -log=, else the fallback.
std::string ResolveLogFolder(int argc, const char** argv, const std::string& fallback);

// Creates the folder with its parents unless it exists. Fails for a file of that name.
ResultCode CreateMissingFolder(const std::string& folder);

ResultCode SetLogRootFolder(const std::string& folder);
