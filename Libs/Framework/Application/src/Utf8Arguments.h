#pragma once

#include <string>
#include <vector>

// Splits a command line by the system's rules and turns each argument into UTF-8, of which the first 4095
// bytes are kept. Unpaired surrogates become U+FFFD. Empty when the system refuses the command line.
std::vector<std::string> Utf8Arguments(const wchar_t* commandLine);
