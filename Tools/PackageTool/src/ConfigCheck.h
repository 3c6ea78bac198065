#pragma once

#include <string_view>
#include <vector>

#include "Libs/Shared/src/JsonProblems.h"
#include "Tools/PackageTool/src/Arguments.h"
#include "Tools/PackageTool/src/Console.h"

// Reads the text of a configuration file as the agent does and finds what the agent would refuse, pass over
// or fail at later: syntax, keys, types, classes, partners, expressions, the store's address, and folders
// that do not fit together; and, as warnings, what hardly anybody means. In the order of the text. May throw
// std::bad_alloc.
std::vector<JsonProblem> CheckConfig(std::string_view text);

// Prints the problems of each file. May throw std::bad_alloc.
ExitCode RunCheckConfig(const Arguments& arguments);

// Prints the JSON schema (draft 7) of the configuration, made from the records into which the agent reads it.
// May throw std::bad_alloc.
ExitCode RunConfigSchema(const Arguments& arguments);
