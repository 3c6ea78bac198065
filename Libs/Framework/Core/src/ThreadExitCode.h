#pragma once

#include <cstdint>

// How a thread of ours ends, told by its exit code.
namespace ThreadExitCode {

inline constexpr uint32_t FunctionReturned = 100;
inline constexpr uint32_t ExceptionEscaped = 1;
inline constexpr uint32_t NeverStarted = 2;
inline constexpr uint32_t StillActive = 259; // the system's own mark

} // namespace ThreadExitCode
