#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Libs/Framework/Core/src/PlatformHelpers_KnownPath.h"
#include "Libs/Processes/Core/src/EntriesStamp.h"
#include "Libs/Processes/Core/src/QuotaDecision.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// One sub-folder of an area, measured in each pass. To list a folder costs ten times what it costs to ask
// about one file: so the names of few files are remembered for as long as the folder's time says that they
// are right. So are, for some passes, the sizes of those that are read-only, which nobody writes to any more.
// Belongs to the measuring thread.
class MeasuredFolder {
public:
    // What records say, and the same path as the disk has it. Both without a trailing separator.
    ResultCode SetPaths(std::string path, std::string pathOnDisk);

    // A link is never followed: it has no files, whatever it points to.
    void SetLink(bool isLink) { m_isLink = isLink; }

    // The system's time as a file time. Asked for each folder, after the folder's own: against an earlier one
    // a folder that was made since would come from the future, and be enormously old.
    using Clock = std::function<uint64_t()>;

    // False when the folder has gone or can't be read.
    bool Measure(const Clock& clock, bool timesTellOfEntries, QuotaDecision::FolderRecord& record);

private:
    static constexpr std::size_t MostRemembered = 8;
    static constexpr int PassesWithoutAsking = 7; // about read-only files

    struct KnownFile {
        PlatformHelpers::KnownPath path;
        uint64_t size = 0; // when last asked
        bool isReadOnly = false;
    };

    bool AddUpFiles(uint64_t lastWriteTime, uint64_t now, bool mayRemember, uint64_t& size);
    bool AddUpRemembered(uint64_t& size);
    ResultCode List(uint64_t& size);
    ResultCode Remember(const std::string& fileName);

    std::string m_path;
    std::string m_pathOnDisk;
    PlatformHelpers::KnownPath m_folder;
    std::vector<KnownFile> m_files;
    int m_passesToGo = 0; // until read-only files are asked about too
    EntriesStamp m_stamp; // of m_files and m_isValid
    bool m_isValid = false;
    bool m_isLink = false;
};
