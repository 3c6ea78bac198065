#pragma once

#include "Tools/PackageTool/src/Arguments.h"
#include "Tools/PackageTool/src/Console.h"

// Shows what the agent's receipt files say was sent. May throw std::bad_alloc.
ExitCode RunReceipts(const Arguments& arguments);
