#pragma once

#include <cstdint>
#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

namespace Platform {

// An open file of the operating system for the whole-file operations; closes itself. One thread.
class RawFile {
public:
    RawFile() = default;
    ~RawFile() { static_cast<void>(Close()); }
    RawFile(const RawFile&) = delete; // one close for one open
    RawFile& operator=(const RawFile&) = delete;

    // Folders do not open. Paths are UTF-8; one that is ill-formed or holds a NUL is refused.
    [[nodiscard]] bool OpenForReading(const std::string& path, ReadSharing sharing);
    [[nodiscard]] bool CreateForWriting(const std::string& path);

    // Refuses a path at which there is something already, be it a link that leads nowhere.
    [[nodiscard]] bool CreateNew(const std::string& path);

    [[nodiscard]] bool GetSize(uint64_t& size) const;

    // transferred may be less than length; a read of 0 bytes is the end of the file.
    [[nodiscard]] bool Read(void* data, uint32_t length, uint32_t& transferred);
    [[nodiscard]] bool Write(const void* data, uint32_t length, uint32_t& transferred);

    // The bytes are on the medium afterwards.
    [[nodiscard]] bool Flush();

    // False when the system reports a late write error. True when nothing is open.
    [[nodiscard]] bool Close();

private:
    intptr_t m_handle = -1;
};

// Gives a file another path on the same volume, in place of a writable file or a link that is there. False
// leaves both as they were.
[[nodiscard]] bool RenameFile(const std::string& path, const std::string& newPath);

} // namespace Platform
