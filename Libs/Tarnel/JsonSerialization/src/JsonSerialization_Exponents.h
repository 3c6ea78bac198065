#pragma once

#include <string>
#include <string_view>

// The parser adds up a number's exponent and its count of decimals in an int and follows the sum into a
// table, also when it overflowed: 0.00000000000001e-2147483639 ends the process.
namespace JsonSerialization {

// True when the text may hold such an exponent.
bool HasUnsafeExponent(std::string_view text);

// Puts an exponent of the same length in place of each unsafe one; the number is zero with either. Strings
// stay as they are.
void TameExponents(std::string& text);

} // namespace JsonSerialization
