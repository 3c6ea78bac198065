#pragma once

#include "Tools/PackageTool/src/Arguments.h"
#include "Tools/PackageTool/src/Console.h"

// A package from each submission folder, made by the agent's own packager. An existing package is replaced
// once the new one is complete. May throw std::bad_alloc.
ExitCode RunPack(const Arguments& arguments);
