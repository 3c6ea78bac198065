#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Libs/Processes/Core/src/ListedFolder.h"
#include "Libs/Processes/Core/src/MeasuredFolder.h"
#include "Libs/Processes/Core/src/QuotaDecision.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The measured sub-folders of one area. Each pass measures every one anew; only their names and those of
// their files are kept, so that a pass over what it has seen before allocates nothing. Belongs to the disk
// quota; its thread alone may call after SetFolder.
class AreaScan {
public:
    // With a trailing separator. The folder must exist.
    ResultCode SetFolder(std::string folder);
    const std::string& GetFolder() const { return m_folder; }

    // Measures. Also a failed pass leaves the records it came to.
    ResultCode Run(const MeasuredFolder::Clock& clock);

    // Youngest first, until the next pass.
    std::span<QuotaDecision::FolderRecord> GetRecords() { return std::span(m_records).first(m_recordCount); }

private:
    struct KnownSubFolder {
        MeasuredFolder folder;
        uint64_t listing = 0; // the last one that it was in
    };
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void; // look-ups by view make no string
    };

    ResultCode ListSubFolders(const MeasuredFolder::Clock& clock);
    ResultCode ListAnew();
    ResultCode Meet(const std::string& name, bool isLink);
    void MeasureAll(const MeasuredFolder::Clock& clock);

    std::string m_folder;
    std::string m_folderOnDisk;
    ListedFolder m_listed;

    std::unordered_map<std::string, KnownSubFolder, Hash, std::equal_to<>> m_subFolders;
    uint64_t m_listing = 0;

    std::vector<QuotaDecision::FolderRecord> m_records; // re-used: the first m_recordCount count
    std::size_t m_recordCount = 0;
};
