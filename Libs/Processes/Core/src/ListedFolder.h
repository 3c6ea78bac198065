#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_KnownPath.h"
#include "Libs/Processes/Core/src/EntriesStamp.h"

// Spares a pass the listing of a folder whose last-write time says that it has the entries of the last
// listing still: to ask for that time costs less than one entry does. Now and then it wants a listing all the
// same, for the sake of a program that sets the time back. One thread.
class ListedFolder {
public:
    using Clock = std::function<uint64_t()>; // the system's time as a file time

    // A folder that exists.
    ResultCode Set(const std::string& folder) {
        m_timesTellOfEntries = PlatformHelpers::FolderTimesTellOfEntries(folder);
        return m_path.Set(folder);
    }

    bool TimesTellOfEntries() const { return m_timesTellOfEntries; }

    // Asked at the start of a pass. When true, the folder has to be listed after that.
    bool MustList(const Clock& clock) {
        PlatformHelpers::KnownPath::Status status;
        // A link's time tells nothing of the folder that it stands for.
        const bool isFolder =
            m_path.Query(status) && (status.attributes & PlatformHelpers::ReparseAttribute) == 0;
        if (isFolder && m_passesLeft > 0 && m_stamp.Holds(status.lastWriteTime)) {
            --m_passesLeft;
            return false;
        }
        m_stamp.Clear();
        m_mayRemember = isFolder && m_timesTellOfEntries;
        m_lastWriteTime = status.lastWriteTime;
        m_asked = clock();
        return true;
    }

    // After a listing whose entries need no second look while they stay the same.
    void SetListed() {
        if (m_mayRemember) {
            m_stamp.Set(m_lastWriteTime, m_asked);
            m_passesLeft = MostPasses;
        }
    }

private:
    static constexpr int MostPasses = 15;

    PlatformHelpers::KnownPath m_path;
    bool m_timesTellOfEntries = false;

    EntriesStamp m_stamp; // of the last listing
    int m_passesLeft = 0; // that may do without one

    // What the pass found that is to list the folder.
    bool m_mayRemember = false;
    uint64_t m_lastWriteTime = 0;
    uint64_t m_asked = 0;
};
