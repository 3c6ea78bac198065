#pragma once

#include <memory>

#include "Libs/Framework/Core/src/ApplicationBase.h"

// Runs the application on the main thread from start to end. Arguments are UTF-8, argv[0] is the program's
// path. Returns the exit code of the program: 0, or 1 if there is no application, 2 if Initialize failed,
// 3 if Run and 4 if Shutdown.
int CommonMain(int argc, const char** argv);

// Makes the application; supplied by the front end. Empty is a failure.
std::shared_ptr<ApplicationBase> CreateApplication(int argc, const char** argv);
