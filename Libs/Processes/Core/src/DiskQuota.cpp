#include "Libs/Processes/Core/src/DiskQuota.h"

#include <utility>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

Reflection_DefinePolymorphicType(DiskQuota);

ResultCode DiskQuota::Initialize(const JsonDocument& config, int, const char**) {
    if (const ResultCode result = ReadConfigSection(config, GetName(), m_config); !result) {
        return result;
    }
    if (const ResultCode result = ResolveFolder(m_config.dumpsFolder, DefaultName::Dumps); !result) {
        return result;
    }
    if (const ResultCode result = ResolveFolder(m_config.packagedFolder, DefaultName::PackagedQuota);
        !result) {
        return result;
    }
    return OpenAreas();
}

// The default packaged folder is the packager's: the file system takes no notice of the case.
ResultCode DiskQuota::ResolveFolder(std::string& folder, const char* defaultName) const {
    if (folder.empty()) {
        const ApplicationBase* application = GetApplication();
        folder = application ? application->GetApplicationFolder() : std::string();
        if (const ResultCode result = PlatformHelpers::EnsureTrailingFolderSeparator(folder); !result) {
            return result;
        }
        folder += defaultName;
    }
    return PlatformHelpers::EnsureTrailingFolderSeparator(folder);
}

ResultCode DiskQuota::OpenAreas() {
    ResultCode result = PlatformHelpers::CreateFolderTree(m_config.dumpsFolder);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to create quota %s dumps folder \"%s\". Error=%s",
                     GetName(), m_config.dumpsFolder.c_str(), result.Text());
        return "Failed to create dumps folder";
    }
    result = PlatformHelpers::CreateFolderTree(m_config.packagedFolder);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to create quota %s packaged dumps folder \"%s\". Error=%s",
                     GetName(), m_config.packagedFolder.c_str(), result.Text());
        return "Failed to create packaged dumps folder";
    }
    result = m_dumps.SetFolder(m_config.dumpsFolder);
    return result ? m_packaged.SetFolder(m_config.packagedFolder) : result;
}

bool DiskQuota::ThreadMain() {
    return RunRounds(m_config.timeBetweenChecks, [this] { Pass(); });
}

void DiskQuota::Pass() {
    m_pausesLeft = LongestPauses;
    Scan(m_dumps);
    Scan(m_packaged);
    const std::size_t dumpsLeft = RemoveAgingInvalid();
    EnforceQuota(m_dumps.GetRecords().first(dumpsLeft), m_config.dumpsQuota);
    EnforceQuota(m_packaged.GetRecords(), m_config.packagedQuota);
}

void DiskQuota::Scan(AreaScan& area) {
    if (const ResultCode result =
            ExceptionToResult([&] { return area.Run(PlatformHelpers::PreciseSystemTime); });
        !result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to scan folder %s. Error=%s", area.GetFolder().c_str(),
                     result.Text());
    }
}

// Moves the records that stay to the front, in their order, and returns how many they are.
std::size_t DiskQuota::RemoveAgingInvalid() {
    const auto records = m_dumps.GetRecords();
    std::size_t stay = 0;
    for (QuotaDecision::FolderRecord& record : records) {
        if (!QuotaDecision::IsAgedOut(record, m_config.invalidGraceTime)) {
            std::swap(records[stay++], record);
            continue;
        }
        if (const ResultCode result = Remove(record.path); result) {
            PLATFORM_LOG(Platform::InfoLog, " Removed aging invalid dump folder %s", record.path.c_str());
        } else {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to remove aging invalid dump folder %s. Error=%s",
                         record.path.c_str(), result.Text());
        }
    }
    return stay;
}

void DiskQuota::EnforceQuota(std::span<const QuotaDecision::FolderRecord> records, uint64_t quota) {
    for (const auto& record : records.subspan(QuotaDecision::CountThatFit(records, quota))) {
        if (const ResultCode result = Remove(record.path); result) {
            PLATFORM_LOG(Platform::InfoLog, " Removed aging folder %s that puts us over our quota",
                         record.path.c_str());
        } else {
            PLATFORM_LOG(Platform::ErrorLog,
                         " Failed to remove aging folder %s that puts us over our quota. Error=%s",
                         record.path.c_str(), result.Text());
        }
    }
}

ResultCode DiskQuota::Remove(const std::string& folder) {
    const auto pause = [this](uint32_t milliseconds) {
        if (milliseconds <= m_pausesLeft) {
            m_pausesLeft -= milliseconds;
            Pause(milliseconds);
        }
    };
    return ExceptionToResult([&] { return PlatformHelpers::RemoveFolder(folder, pause); });
}
