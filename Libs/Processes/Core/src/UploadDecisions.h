#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// What an uploader decides, without clock, threads or files.
namespace UploadDecisions {

// The question comes before a batch that arrives at an empty list, and once a run: an answer stays.
[[nodiscard]] bool ShouldAskPermission(bool askPermission, bool nothingPending, bool foundNew,
                                       UploadPermission state);

// Yes alone allows; every other answer refuses, and so does a question that failed, whatever the answer
// holds.
[[nodiscard]] UploadPermission PermissionAfterAsking(const ResultCode& asked, UploadPermission answer);

[[nodiscard]] bool MayStartUpload(bool stopRequested, std::size_t pending, std::size_t active,
                                  std::size_t maxActive);

// Takes the folder that came last. Fails when none is pending.
ResultCode TakeNextFolder(std::vector<std::string>& pending, std::string& folder);

// False when an uploader begins a new cycle. Times are seconds since the epoch.
[[nodiscard]] bool CycleGoesOn(bool stopRequested, std::size_t pending, std::size_t active, int64_t now,
                               int64_t deadline);

} // namespace UploadDecisions
