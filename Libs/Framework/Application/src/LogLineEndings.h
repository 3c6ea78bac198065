#pragma once

#include <string>
#include <string_view>

// A log entry as whole lines for Windows: every line feed gets a carriage return before it, but for one at
// the very start, and a text that does not end in a line feed gets a line end. Empty stays empty.
//
//   "a\nb" becomes "a\r\nb\r\n", "\nabc" becomes "\nabc\r\n", "a\r\n" stays.
std::string WithWindowsLineEndings(std::string_view text);
