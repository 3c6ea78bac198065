#pragma once

#include <cstdint>

// What to do while the system denies access to a file that a virus scanner or an indexer looks at for a
// moment: ten attempts, with pauses of 2, 4, 8 ... 512 ms between them.
namespace PlatformHelpers {

inline constexpr uint32_t FirstRetryDelay = 1;
inline constexpr uint32_t LastRetryDelay = 512;

// The pause in milliseconds after a denied attempt that came delay milliseconds after the one before it (the
// first: FirstRetryDelay). 0 when there is to be no further attempt.
constexpr uint32_t NextRetryDelay(uint32_t delay) {
    return delay < LastRetryDelay ? delay * 2 : 0;
}

// Also a sharing violation: that is how the system denies access to what somebody else holds open.
constexpr bool IsAccessDenied(uint32_t systemError) {
    constexpr uint32_t AccessDenied = 5;
    constexpr uint32_t SharingViolation = 32;
    return systemError == AccessDenied || systemError == SharingViolation;
}

enum class RetryOutcome { Done, StillDenied, Failed };

struct RetryResult {
    RetryOutcome outcome;
    uint32_t error; // of the last attempt, 0 for none
};

// osCall() makes one attempt and returns the system's error number, 0 for success. pause(milliseconds) waits.
template <class OsCall, class Pause>
RetryResult RetryWhileDenied(OsCall osCall, Pause pause) {
    for (uint32_t delay = FirstRetryDelay;;) {
        const uint32_t error = osCall();
        if (error == 0) {
            return {RetryOutcome::Done, 0};
        }
        if (!IsAccessDenied(error)) {
            return {RetryOutcome::Failed, error};
        }
        delay = NextRetryDelay(delay);
        if (delay == 0) {
            return {RetryOutcome::StillDenied, error};
        }
        pause(delay);
    }
}

} // namespace PlatformHelpers
