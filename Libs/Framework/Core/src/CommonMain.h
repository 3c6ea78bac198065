#pragma once

#include <memory>

#include "Libs/Framework/Core/src/ApplicationBase.h"

// Takes the application through its life on the main thread. Arguments are UTF-8, argv[0] the program's path.
// Returns the exit code of the program: 0, or 1 when there is no application, 2 when Initialize, 3 when Run
// and 4 when Shutdown failed.
int CommonMain(int argc, const char** argv);

// Makes the application; supplied by the front end. Empty is a failure.
std::shared_ptr<ApplicationBase> CreateApplication(int argc, const char** argv);
