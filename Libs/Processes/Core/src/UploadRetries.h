#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What an upload learned of its package and of the store, beside its result.
struct UploadAnswer {
    std::string key;                // the object's, by which a player names the report; empty if unknown
    uint32_t httpStatus = 0;        // 0: no answer
    uint32_t retryAfterSeconds = 0; // before which the store wants no other attempt; 0: it did not say
};

// Which package an uploader sends next, and when one that failed is tried again. Decisions without clock,
// threads or files; nothing allocates.
namespace UploadRetries {

using Time = std::chrono::steady_clock::time_point;

// A package between its watcher and its end.
struct Package {
    std::string folder;
    Time due{}; // it is not tried before; a new one is due at once
    uint32_t attempts = 0;
    uint32_t refusals = 0; // attempts that a store answered with 400, 403 or 404
    bool isActive = false; // its upload runs
};

// The latest one that is due and not active; null if there is none.
Package* LatestDue(std::vector<Package>& packages, Time now);

// The active one of that folder; null if there is none.
Package* FindActive(std::vector<Package>& packages, const std::string& folder);

struct Rule {
    uint32_t timeBetweenRetriesMs = 0;
    uint32_t maxAttempts = 0;
};

// Counts an attempt that failed and gives the pause before the next one. None: the package is left for the
// next run. The pause is doubled with each attempt, but not beyond an hour, and at least what Retry-After
// asks for, up to an hour. random is any number: it adds up to a quarter, so that not all players come back
// at once.
std::optional<std::chrono::milliseconds> CountFailure(Package& package, const UploadAnswer& answer,
                                                      const Rule& rule, uint32_t random);

} // namespace UploadRetries
