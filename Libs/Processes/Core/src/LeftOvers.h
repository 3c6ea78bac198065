#pragma once

#include <string>

#include "Libs/Processes/Core/src/ProcessConfigs.h"

// What a run that was killed in the middle of a deletion left for good, because nobody takes it any more.
namespace LeftOvers {

// Deletes, and nothing else:
//   - in the packaged and in the work folder, sub-folders that are empty or hold nothing but a package that
//   is not
//     read-only,
//   - in the dumps folder, sub-folders that are not complete and whose package is finished.
// Only while no other process uses these folders. The configuration's folders are resolved; the dumps folder
// ends in a separator and is empty if there is none.
void Remove(const PackagerConfig& config, const std::string& dumpsFolder, const std::string& sentinelFile);

} // namespace LeftOvers
