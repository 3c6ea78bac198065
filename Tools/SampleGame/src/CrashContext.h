#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct _EXCEPTION_POINTERS; // NOLINT(bugprone-reserved-identifier): the system's own

namespace SampleGame {

// The code of the exception that the crash handler makes of abort().
constexpr uint32_t AbortCode = 0xE0000001;

// One loaded module, with what identifies its debug information (zero and empty if the image names none).
struct Module {
    std::string path;
    uint64_t base = 0;
    uint64_t size = 0;
    uint32_t guid1 = 0;
    uint16_t guid2 = 0, guid3 = 0;
    std::array<uint8_t, 8> guid4{};
    uint32_t age = 0;
    std::string pdbPath;
};

// What the process looked like at the moment of the crash.
struct CrashContext {
    std::string message;
    std::vector<uint64_t> callstack; // innermost first
    std::vector<Module> modules;
};

CrashContext CaptureContext(const _EXCEPTION_POINTERS& exception);

// "SampleGame.exe+0x1234", or the bare address outside every module.
std::string DescribeAddress(uint64_t address, const std::vector<Module>& modules);

} // namespace SampleGame
