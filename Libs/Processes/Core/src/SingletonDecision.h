#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Who of several copies of the program stays, without asking the system.
namespace SingletonDecision {

// What follows the last "\" of the program's first argument; nothing when it ends in one.
std::optional<std::string> ExecutableName(std::string_view argument);

// A running process whose image has the program's name.
struct Copy {
    uint32_t processId = 0;
    uint64_t creationTime = 0; // file time
};

// The oldest copy stays, so that of copies started together one is left; the others go. Of the same age the
// lower process id counts as older. Where this process is none of the copies, two others send it away.
bool MustStop(std::span<const Copy> copies, uint32_t ownProcessId);

} // namespace SingletonDecision
