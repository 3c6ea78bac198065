#pragma once

#include "Tools/PackageTool/src/Arguments.h"
#include "Tools/PackageTool/src/Console.h"

// One function a command. They go through all files, whatever is wrong with one of them. May throw
// std::bad_alloc.
ExitCode RunList(const Arguments& arguments);
ExitCode RunVerify(const Arguments& arguments);
ExitCode RunUnpack(const Arguments& arguments);
ExitCode RunPack(const Arguments& arguments);
ExitCode RunCheckConfig(const Arguments& arguments);
ExitCode RunConfigSchema(const Arguments& arguments);
