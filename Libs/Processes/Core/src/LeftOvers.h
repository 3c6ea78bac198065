#pragma once

#include <string>

#include "Libs/Processes/Core/src/ProcessConfigs.h"

// What remains of a deletion if the agent is killed in the middle of it. No process would ever take it.
namespace LeftOvers {

// Deletes, and nothing else:
//   - in the packaged and the work folder, sub-folders that are empty or hold only a writable package,
//   - in the dumps folder, sub-folders that are not complete and whose package is finished.
// Only while no other process uses these folders. The configuration's folders are resolved; the dumps folder
// ends in a separator and is empty if there is none.
void Remove(const PackagerConfig& config, const std::string& dumpsFolder, const std::string& sentinelFile);

} // namespace LeftOvers
