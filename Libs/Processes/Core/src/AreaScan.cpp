#include "Libs/Processes/Core/src/AreaScan.h"

#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

namespace {

using PlatformHelpers::PathInfo;

ResultCode AddUpFiles(QuotaDecision::FolderRecord& record) {
    return PlatformHelpers::EnumerateFolder(record.path + "\\", PlatformHelpers::EnumerateFiles,
                                            [&](const PathInfo& file, bool&) {
                                                record.valid = record.valid || file.name == HeaderFile::Name;
                                                record.size += file.IsLink() ? 0 : file.size;
                                                return ResultCode(Platform::Success);
                                            });
}

} // namespace

ResultCode ScanArea(const std::string& folder, std::vector<QuotaDecision::FolderRecord>& records) {
    records.clear();
    const ResultCode result = PlatformHelpers::EnumerateFolder(
        folder, PlatformHelpers::EnumerateFolders, [&](const PathInfo& entry, bool&) {
            QuotaDecision::FolderRecord record;
            // The clock is read for each entry, after it: a folder that was made since the scan began would
            // come from the future otherwise, and be enormously old.
            record.age = QuotaDecision::AgeInSeconds(Platform::PreciseSystemTime(), entry.creationTime);
            record.path = folder + entry.name;
            if (entry.IsLink() || AddUpFiles(record)) {
                records.push_back(std::move(record));
            }
            return ResultCode(Platform::Success);
        });
    QuotaDecision::SortByAge(records);
    return result;
}
