#pragma once

#include <optional>
#include <string>
#include <string_view>

// The grammar of the command line. An argument gives option "-log" a value if it begins with "-log", in any
// case, and has a "=" anywhere; the value is everything after the first "=". So "-logs=x" counts as "-log",
// and a value never comes from the next argument.
namespace CommandLine {

// The value that one argument gives the option, possibly empty; null if it gives that option none.
const char* ValueOfArgument(const char* argument, const char* opt);

// The value from the first argument of that option, argv[0] included; later ones don't count. An empty value
// counts as none. A null or empty opt is a programming error.
std::optional<std::string> FindOption(int argc, const char* const* argv, const char* opt);

// Whether an argument is exactly the flag, in any case.
bool HasFlag(int argc, const char* const* argv, const char* flag);

// The option that was probably meant by an argument that looks like one but is unknown; empty for any other
// argument. May throw std::bad_alloc.
std::string_view ProbablyMeant(const char* argument);

} // namespace CommandLine
