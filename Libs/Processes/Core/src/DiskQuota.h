#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Libs/Framework/Core/src/Reflected.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Processes/Core/src/QuotaDecision.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"

// Measures every sub-folder of one area, youngest first. One that can't be read is left out. A link is not
// followed: it has no size and is not valid. folder ends in a separator. A failure leaves what was measured
// until then. May throw std::bad_alloc: the records are in no order then.
ResultCode ScanArea(const std::string& folder, std::vector<QuotaDecision::FolderRecord>& records);

// Keeps the dumps folder and the packaged folder each under its quota. A pass measures an area, removes dump
// folders that did not become a submission in their grace time, and then the oldest folders beyond the quota.
// It asks no other process: each must expect a folder to vanish. An area in which nothing has changed
// since a pass that left nothing to do is not measured again. Owned by the application.
class DiskQuota : public Reflected<DiskQuota> {
public:
    using Reflected::Reflected;

    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    bool ThreadMain() override;

private:
    using Records = std::vector<QuotaDecision::FolderRecord>;

    struct Area {
        std::string folder; // with a trailing separator; constant after Initialize, like the quota
        uint64_t quota = 0; // bytes
        Platform::FolderChanges changes;
    };

    ResultCode ResolveFolder(const std::string& configured, const char* defaultName,
                             std::string& folder) const;
    bool CreateFolder(const std::string& folder, const char* kind) const;
    void CheckDumps();
    void CheckPackaged();
    static bool Scan(const Area& area, Records& records);

    // Both return whether all that had to be removed is gone.
    bool RemoveAgingInvalid(Records& records);
    bool EnforceQuota(const Records& records, uint64_t quota);
    ResultCode Remove(const std::string& folder);

    DiskQuotaConfig m_config; // constant after Initialize

    // The process's thread alone, once it runs.
    Area m_dumps;
    Area m_packaged;

    // Milliseconds of waiting for folders that somebody holds open: a pass waits as long as one of them may
    // take. With that much for each, a pass could take minutes.
    uint32_t m_pausesLeft = 0;
};
Reflection_DeclarePolymorphicType(DiskQuota);
