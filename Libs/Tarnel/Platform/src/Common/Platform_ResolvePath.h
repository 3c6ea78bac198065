#pragma once

#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

// The system's half of SystemPath.
namespace Platform {

// Gives path the form of SystemPath and returns the length of its root. Throws if there is no memory.
std::size_t ResolvePath(SystemText& path);

// Appends the names of relative to folder, without empty ones and "."; ".." removes the last name that it
// appended.
void AppendNames(SystemText& folder, std::basic_string_view<SystemText::value_type> relative);

} // namespace Platform
