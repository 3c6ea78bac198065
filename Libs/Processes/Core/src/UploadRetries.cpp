#include "Libs/Processes/Core/src/UploadRetries.h"

#include <algorithm>

namespace UploadRetries {

namespace {

constexpr uint64_t HourMs = 3'600'000;
constexpr uint32_t MostRefusals = 2;

bool IsRefusal(uint32_t status) {
    return status == 400 || status == 403 || status == 404; // another attempt hardly changes these
}

} // namespace

Package* LatestDue(std::vector<Package>& packages, Time now) {
    const auto found = std::find_if(packages.rbegin(), packages.rend(), [now](const Package& package) {
        return !package.isActive && package.due <= now;
    });
    return found == packages.rend() ? nullptr : &*found;
}

Package* FindActive(std::vector<Package>& packages, const std::string& folder) {
    const auto found = std::find_if(packages.rbegin(), packages.rend(), [&](const Package& package) {
        return package.isActive && package.folder == folder;
    });
    return found == packages.rend() ? nullptr : &*found;
}

std::optional<std::chrono::milliseconds> CountFailure(Package& package, const UploadAnswer& answer,
                                                      const Rule& rule, uint32_t random) {
    ++package.attempts;
    package.refusals += IsRefusal(answer.httpStatus) ? 1u : 0u;
    if (package.attempts >= rule.maxAttempts || package.refusals >= MostRefusals) {
        return std::nullopt;
    }
    const uint64_t first = rule.timeBetweenRetriesMs;
    const uint64_t longest = std::max(first, HourMs);
    uint64_t pause = first;
    for (uint32_t i = 1; i < package.attempts && pause < longest; ++i) {
        pause = std::min(2 * pause, longest);
    }
    pause = std::max(pause, std::min(uint64_t{answer.retryAfterSeconds} * 1000, HourMs));
    return std::chrono::milliseconds(pause + random % (pause / 4 + 1));
}

} // namespace UploadRetries
