#include "Libs/Processes/Core/src/DiskQuota.h"

#include <algorithm>
#include <span>
#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

Reflection_DefinePolymorphicType(DiskQuota);

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

ResultCode DiskQuota::Initialize(const JsonDocument& config, int, const char**) {
    RETURN_IF_FAILED(ReadConfigSection(config, GetName(), m_config));
    m_dumps.quota = m_config.dumpsQuota;
    m_packaged.quota = m_config.packagedQuota;
    RETURN_IF_FAILED(ResolveFolder(m_config.dumpsFolder, DefaultName::Dumps, m_dumps.folder));
    RETURN_IF_FAILED(ResolveFolder(m_config.packagedFolder, DefaultName::PackagedQuota, m_packaged.folder));
    if (!CreateFolder(m_dumps.folder, "dumps")) {
        return "Failed to create dumps folder";
    }
    return CreateFolder(m_packaged.folder, "packaged dumps")
               ? Platform::Success
               : ResultCode("Failed to create packaged dumps folder");
}

ResultCode DiskQuota::ResolveFolder(const std::string& configured, const char* defaultName,
                                    std::string& folder) const {
    folder = configured;
    if (folder.empty()) {
        folder = GetApplicationFolder();
        RETURN_IF_FAILED(PlatformHelpers::EnsureTrailingFolderSeparator(folder));
        folder += defaultName;
    }
    return PlatformHelpers::EnsureTrailingFolderSeparator(folder);
}

bool DiskQuota::CreateFolder(const std::string& folder, const char* kind) const {
    const ResultCode result = PlatformHelpers::CreateFolderTree(folder);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to create quota %s %s folder \"%s\". Error=%s", GetName(),
                     kind, folder.c_str(), result.Text());
    }
    return result.Succeeded();
}

bool DiskQuota::ThreadMain() {
    return RunRounds(m_config.timeBetweenChecks, [this] {
        m_pausesLeft = Platform::AllRetryPauses;
        CheckDumps();
        CheckPackaged();
    });
}

void DiskQuota::CheckDumps() {
    if (!m_dumps.changes.NeedPass(m_dumps.folder)) {
        return;
    }
    Records records;
    const bool isWhole = Scan(m_dumps, records);
    const bool isTidy = RemoveAgingInvalid(records);
    const bool fits = EnforceQuota(records, m_dumps.quota);
    // What is not valid yet may be too old in the next pass.
    const bool isValid = std::ranges::all_of(records, &QuotaDecision::FolderRecord::valid);
    m_dumps.changes.EndPass(isWhole && isTidy && fits && isValid);
}

void DiskQuota::CheckPackaged() {
    if (m_packaged.changes.NeedPass(m_packaged.folder)) {
        Records records;
        const bool isWhole = Scan(m_packaged, records);
        m_packaged.changes.EndPass(EnforceQuota(records, m_packaged.quota) && isWhole);
    }
}

bool DiskQuota::Scan(const Area& area, Records& records) {
    const ResultCode result = ScanArea(area.folder, records);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to scan folder %s. Error=%s", area.folder.c_str(),
                     result.Text());
    }
    return result.Succeeded();
}

bool DiskQuota::RemoveAgingInvalid(Records& records) {
    bool isTidy = true;
    std::erase_if(records, [&](const QuotaDecision::FolderRecord& record) {
        if (!QuotaDecision::IsAgedOut(record, m_config.invalidGraceTime)) {
            return false;
        }
        const ResultCode result = Remove(record.path);
        isTidy = isTidy && result;
        if (result) {
            PLATFORM_LOG(Platform::InfoLog, " Removed aging invalid dump folder %s", record.path.c_str());
        } else {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to remove aging invalid dump folder %s. Error=%s",
                         record.path.c_str(), result.Text());
        }
        return true;
    });
    return isTidy;
}

bool DiskQuota::EnforceQuota(const Records& records, uint64_t quota) {
    bool fits = true;
    for (const auto& record : std::span(records).subspan(QuotaDecision::CountThatFit(records, quota))) {
        const ResultCode result = Remove(record.path);
        fits = fits && result;
        if (result) {
            PLATFORM_LOG(Platform::InfoLog, " Removed aging folder %s that puts us over our quota",
                         record.path.c_str());
        } else {
            PLATFORM_LOG(Platform::ErrorLog,
                         " Failed to remove aging folder %s that puts us over our quota. Error=%s",
                         record.path.c_str(), result.Text());
        }
    }
    return fits;
}

ResultCode DiskQuota::Remove(const std::string& folder) {
    const auto pause = [this](uint32_t milliseconds) {
        if (milliseconds <= m_pausesLeft) {
            m_pausesLeft -= milliseconds;
            Pause(milliseconds);
        }
    };
    return PlatformHelpers::RemoveFolder(folder, pause);
}
