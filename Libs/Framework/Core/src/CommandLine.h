#pragma once

#include <optional>
#include <string>

// The one grammar of the command line. An argument gives option "-log" a value when it begins with "-log", in
// any case, and holds a "=" anywhere; the value is everything after the first "=". So "-logs=x" counts as
// "-log", and no value comes from a following argument.
namespace CommandLine {

// The value that one argument gives the option, possibly empty; null when the argument is not of that option.
const char* ValueOfArgument(const char* argument, const char* opt);

// The value in the first argument of that option, argv[0] included; later ones don't count. An empty value
// counts as absent. A null or empty opt is a programming error.
std::optional<std::string> FindOption(int argc, const char* const* argv, const char* opt);

// Whether some argument is the flag, whole and in any case.
bool HasFlag(int argc, const char* const* argv, const char* flag);

} // namespace CommandLine
