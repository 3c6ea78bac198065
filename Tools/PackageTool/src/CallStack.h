#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Libs/Processes/Core/src/BugHeader.h"

// As many frames as are shown of a call stack. A hostile header can't make more text than that.
inline constexpr std::size_t MaxShownFrames = 100;

// The header's return addresses, innermost first: game.exe+0x1a2b, the same on every machine that ran that
// build, or the bare address outside of all modules. Modules are known by the last part of their path. Throws
// std::bad_alloc.
std::vector<std::string> ShownFrames(const BugHeader& header);
