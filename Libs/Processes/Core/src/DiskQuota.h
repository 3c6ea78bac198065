#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/ReflectedProcess.h"
#include "Libs/Processes/Core/src/AreaScan.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"

// Keeps the dumps folder and the packaged folder each under its quota. A pass measures both, removes dump
// folders that never became a submission in their grace time, and then of each area the oldest folders beyond
// the quota. It asks nobody: who works in a folder must expect it to vanish. Owned by the application.
class DiskQuota : public Reflected<DiskQuota> {
public:
    using Reflected::Reflected;

    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    bool ThreadMain() override;

private:
    // Pauses for folders that somebody holds open, in milliseconds a pass: what one of them may take. With
    // one for each a pass, and with it the end of the program, could take minutes; all others are tried again
    // without pauses, and once more in the next pass.
    static constexpr uint32_t LongestPauses = 1022;

    ResultCode ResolveFolder(std::string& folder, const char* defaultName) const;
    ResultCode OpenAreas();
    void Pass();
    static void Scan(AreaScan& area);
    std::size_t RemoveAgingInvalid();
    void EnforceQuota(std::span<const QuotaDecision::FolderRecord> records, uint64_t quota);
    ResultCode Remove(const std::string& folder);

    DiskQuotaConfig m_config; // constant after Initialize

    // The process's thread alone, once it runs.
    AreaScan m_dumps;
    AreaScan m_packaged;
    uint32_t m_pausesLeft = 0;
};
Reflection_DeclarePolymorphicType(DiskQuota);
