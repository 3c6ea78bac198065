#include "Libs/Processes/Core/src/SingletonDecision.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <vector>

namespace SingletonDecision {

std::optional<std::string> ExecutableName(std::string_view argument) {
    if (argument.ends_with('\\')) {
        return std::nullopt;
    }
    return std::string(argument.substr(argument.rfind('\\') + 1));
}

Verdict Decide(std::span<const Copy> copies, uint32_t ownProcessId) {
    std::vector<Copy> lasting;
    std::ranges::copy_if(copies, std::back_inserter(lasting),
                         [](const Copy& copy) { return copy.state != State::Ending; });
    if (lasting.size() >= 2) {
        const auto first = std::ranges::min_element(lasting, [](const Copy& left, const Copy& right) {
            return std::tie(left.state, left.creationTime, left.processId) <
                   std::tie(right.state, right.creationTime, right.processId);
        });
        if (first->processId != ownProcessId) {
            return Verdict::Go;
        }
    }
    return lasting.size() == copies.size() ? Verdict::Stay : Verdict::Wait;
}

} // namespace SingletonDecision
