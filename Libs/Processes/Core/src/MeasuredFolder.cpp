#include "Libs/Processes/Core/src/MeasuredFolder.h"

#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/FolderPath.h"

ResultCode MeasuredFolder::SetPaths(std::string path, std::string pathOnDisk) {
    m_path = std::move(path);
    m_pathOnDisk = std::move(pathOnDisk);
    return m_folder.Set(m_pathOnDisk);
}

bool MeasuredFolder::Measure(const Clock& clock, bool timesTellOfEntries,
                             QuotaDecision::FolderRecord& record) {
    PlatformHelpers::KnownPath::Status folder;
    if (!m_folder.Query(folder)) {
        return false;
    }
    const uint64_t now = clock();
    uint64_t size = 0;
    if (!m_isLink && !AddUpFiles(folder.lastWriteTime, now, timesTellOfEntries, size)) {
        return false;
    }
    record.age = QuotaDecision::AgeInSeconds(now, folder.creationTime);
    record.path = m_path;
    record.size = size;
    record.valid = !m_isLink && m_isValid;
    return true;
}

bool MeasuredFolder::AddUpFiles(uint64_t lastWriteTime, uint64_t now, bool mayRemember, uint64_t& size) {
    if (m_stamp.Holds(lastWriteTime) && AddUpRemembered(size)) {
        return true;
    }
    m_stamp.Clear();
    if (!List(size)) {
        return false;
    }
    if (mayRemember && m_files.size() <= MostRemembered) {
        m_stamp.Set(lastWriteTime, now);
    }
    return true;
}

bool MeasuredFolder::AddUpRemembered(uint64_t& size) {
    const bool asksAll = m_passesToGo == 0;
    m_passesToGo = asksAll ? PassesWithoutAsking : m_passesToGo - 1;
    size = 0;
    PlatformHelpers::KnownPath::Status status;
    for (KnownFile& file : m_files) {
        if (asksAll || !file.isReadOnly) {
            if (!file.path.Query(status)) {
                return false;
            }
            file.size = status.size;
            file.isReadOnly = (status.attributes & PlatformHelpers::ReadOnlyAttribute) != 0;
        }
        size += file.size;
    }
    return true;
}

ResultCode MeasuredFolder::List(uint64_t& size) {
    size = 0;
    m_isValid = false;
    m_files.clear();
    m_passesToGo = 0;
    const std::string folder = FolderPath::Join(m_pathOnDisk, "");
    return PlatformHelpers::EnumerateFolder(folder, PlatformHelpers::EnumerateFiles,
                                            [&](const PlatformHelpers::PathInfo& file, bool&) {
                                                m_isValid = m_isValid || file.name == HeaderFile::Name;
                                                if (file.IsLink()) {
                                                    return ResultCode(Platform::Success);
                                                }
                                                size += file.size;
                                                return Remember(file.name);
                                            });
}

// One more than is worth to be remembered stands for all the others.
ResultCode MeasuredFolder::Remember(const std::string& fileName) {
    if (m_files.size() > MostRemembered) {
        return Platform::Success;
    }
    return m_files.emplace_back().path.Set(FolderPath::Join(m_pathOnDisk, fileName));
}
