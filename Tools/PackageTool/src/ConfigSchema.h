#pragma once

#include "Tools/PackageTool/src/Arguments.h"
#include "Tools/PackageTool/src/Console.h"

// Prints the JSON schema (draft 7) of the configuration, made from the records into which the agent reads it.
// May throw std::bad_alloc.
ExitCode RunConfigSchema(const Arguments& arguments);
