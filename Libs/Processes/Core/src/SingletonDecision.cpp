#include "Libs/Processes/Core/src/SingletonDecision.h"

#include <algorithm>
#include <tuple>

namespace SingletonDecision {

std::optional<std::string> ExecutableName(std::string_view argument) {
    if (argument.ends_with('\\')) {
        return std::nullopt;
    }
    return std::string(argument.substr(argument.rfind('\\') + 1));
}

bool MustStop(std::span<const Copy> copies, uint32_t ownProcessId) {
    if (copies.size() < 2) {
        return false;
    }
    const auto oldest = std::ranges::min_element(copies, [](const Copy& left, const Copy& right) {
        return std::tie(left.creationTime, left.processId) < std::tie(right.creationTime, right.processId);
    });
    return oldest->processId != ownProcessId;
}

} // namespace SingletonDecision
