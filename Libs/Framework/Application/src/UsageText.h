#pragma once

#include <string>

// What the agent says instead of starting, when it is asked for its options or its version.
namespace UsageText {

// Empty if the arguments ask for neither. Main thread. May throw std::bad_alloc.
std::string Answer(int argc, const char* const* argv);

// Prints the text where the caller reads; shows a box if nobody gave the program an output.
void Show(const std::string& text);

} // namespace UsageText
