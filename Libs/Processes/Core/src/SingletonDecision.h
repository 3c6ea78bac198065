#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Which of several copies of the program stays, without asking the system.
namespace SingletonDecision {

// What follows the last "\" of the program's first argument; nothing when it ends in one.
std::optional<std::string> ExecutableName(std::string_view argument);

// What a copy has said of itself. One that has said nothing is still deciding, or is another program whose
// name has the same ending.
enum class State { Staying, Deciding, Ending };

// A running process whose image has the program's name.
struct Copy {
    uint32_t processId = 0;
    uint64_t creationTime = 0; // file time
    State state = State::Deciding;
};

enum class Verdict { Stay, Wait, Go };

// A copy that stays sends all others away, whatever the clock said when they started. If none has decided
// yet, the oldest will stay; at the same age that is the one with the lower process id. A copy that is ending
// sends no one away: the others wait for its end. A process that is not in the list goes if two others are.
Verdict Decide(std::span<const Copy> copies, uint32_t ownProcessId);

} // namespace SingletonDecision
