#pragma once

#include <memory>

#include "Libs/Framework/Core/src/ApplicationBase.h"

// Of the program.
enum ExitCode : int { Done = 0, NoApplication = 1, InitializeFailed = 2, RunFailed = 3, ShutdownFailed = 4 };

// Runs the application on the main thread from start to end; returns an ExitCode. Arguments are UTF-8,
// argv[0] is the program's path. Throws std::bad_alloc before there is an application.
int CommonMain(int argc, const char** argv);

// Makes the application; supplied by the front end. Empty is a failure.
std::shared_ptr<ApplicationBase> CreateApplication(int argc, const char** argv);
