#pragma once

#include <cstddef>
#include <string>

namespace Bench {

inline constexpr std::size_t HeaderModules = 500;

// The header of a crash of a large game: 5,000 frames and 500 modules, the same in every run.
std::string MakeHeaderText();

// Parses a text by the JSON library as it comes: with its own settings, which those of the program would
// change, so that this stands in a unit of its own. False when it is not JSON.
bool ParseBare(const std::string& text);

} // namespace Bench
