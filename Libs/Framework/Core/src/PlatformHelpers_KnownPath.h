#pragma once

#include <cstdint>
#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

namespace PlatformHelpers {

// A path that is asked about again and again: converted once, so that asking allocates nothing.
class KnownPath {
public:
    struct Status {
        uint32_t attributes = 0;
        uint64_t creationTime = 0; // file times
        uint64_t lastWriteTime = 0;
        uint64_t size = 0; // bytes
    };

    ResultCode Set(const std::string& path);

    // False when there is nothing there, or nothing that this user may ask about.
    bool Query(Status& status) const;

private:
    std::wstring m_systemPath;
};

// Now, as a file time. The precise one: the other moves in steps of up to 16 ms and can be behind the
// creation of a folder.
uint64_t PreciseSystemTime();

// A folder's path, with a trailing separator, whose last name stands in it as on the disk: not every system
// finds a name in another case as quickly. The path itself where it can't be told.
std::string PathOnDisk(const std::string& folder);

// Whether a folder of this volume has another last-write time after an entry came, went or was renamed. On a
// local NTFS disk it has; nothing is taken for granted of others.
bool FolderTimesTellOfEntries(const std::string& folder);

} // namespace PlatformHelpers
