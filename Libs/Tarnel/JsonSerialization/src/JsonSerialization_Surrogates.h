#pragma once

#include <string>
#include <string_view>

// The parser refuses an escaped high surrogate without its low one, but takes a low one by itself ("\udc00")
// for a character. What it makes of that is no UTF-8, so that the text could not be read again once written.
namespace JsonSerialization {

// True when the text has such an escape. Looks at no more than the backslashes.
bool HasLoneLowSurrogate(std::string_view text);

// Turns each of them into a high one without its low one, which the parser refuses at that place.
void BreakLoneLowSurrogates(std::string& text);

} // namespace JsonSerialization
