#include "Libs/Processes/Core/src/AreaScan.h"

#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"

ResultCode AreaScan::SetFolder(std::string folder) {
    m_folder = std::move(folder);
    m_folderOnDisk = PlatformHelpers::PathOnDisk(m_folder);
    return m_listed.Set(m_folderOnDisk);
}

ResultCode AreaScan::Run(const MeasuredFolder::Clock& clock) {
    m_recordCount = 0;
    const ResultCode listed = ListSubFolders(clock);
    MeasureAll(clock);
    QuotaDecision::SortByAge(GetRecords());
    return listed;
}

ResultCode AreaScan::ListSubFolders(const MeasuredFolder::Clock& clock) {
    if (!m_listed.MustList(clock)) {
        return Platform::Success;
    }
    const ResultCode result = ListAnew();
    if (result) {
        m_listed.SetListed();
    }
    return result;
}

ResultCode AreaScan::ListAnew() {
    ++m_listing;
    const ResultCode result = PlatformHelpers::EnumerateFolder(
        m_folderOnDisk, PlatformHelpers::EnumerateFolders,
        [this](const PlatformHelpers::PathInfo& entry, bool&) { return Meet(entry.name, entry.IsLink()); });
    std::erase_if(m_subFolders, [this](const auto& known) { return known.second.listing != m_listing; });
    return result;
}

ResultCode AreaScan::Meet(const std::string& name, bool isLink) {
    auto found = m_subFolders.find(std::string_view(name));
    if (found == m_subFolders.end()) {
        MeasuredFolder folder;
        if (const ResultCode result = folder.SetPaths(m_folder + name, m_folderOnDisk + name); !result) {
            return result;
        }
        found = m_subFolders.emplace(name, KnownSubFolder{std::move(folder)}).first;
    }
    found->second.folder.SetLink(isLink);
    found->second.listing = m_listing;
    return Platform::Success;
}

void AreaScan::MeasureAll(const MeasuredFolder::Clock& clock) {
    m_records.resize(m_subFolders.size());
    for (auto& [name, known] : m_subFolders) {
        if (known.folder.Measure(clock, m_listed.TimesTellOfEntries(), m_records[m_recordCount])) {
            ++m_recordCount;
        }
    }
}
