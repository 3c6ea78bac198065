#include "Libs/Processes/Core/src/UploadDecisions.h"

#include <utility>

namespace UploadDecisions {

bool ShouldAskPermission(bool askPermission, bool nothingPending, bool foundNew, UploadPermission state) {
    return askPermission && nothingPending && foundNew && state == UploadPermission::NotAsked;
}

UploadPermission PermissionAfterAsking(const ResultCode& asked, UploadPermission answer) {
    return asked && answer == UploadPermission::Allowed ? UploadPermission::Allowed
                                                        : UploadPermission::Refused;
}

bool MayStartUpload(bool stopRequested, std::size_t pending, std::size_t active, std::size_t maxActive) {
    return !stopRequested && pending > 0 && active < maxActive;
}

ResultCode TakeNextFolder(std::vector<std::string>& pending, std::string& folder) {
    if (pending.empty()) {
        return "No pending folder";
    }
    folder = std::move(pending.back());
    pending.pop_back();
    return Platform::Success;
}

bool CycleGoesOn(bool stopRequested, std::size_t pending, std::size_t active, int64_t now, int64_t deadline) {
    const bool idle = pending == 0 && active == 0;
    return !stopRequested && !idle && now < deadline;
}

} // namespace UploadDecisions
