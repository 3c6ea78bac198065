#pragma once

#include <string>

// The JSON schema (draft 7) of the configuration, made from the records into which the agent reads it. Lines
// end in "\n". May throw std::bad_alloc.
std::string ConfigSchemaText();
