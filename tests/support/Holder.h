#pragma once

#include <windows.h>

#include "tests/support/ScratchFolder.h"

namespace TestSupport {

// Keeps a file or folder open, so that nobody may delete it meanwhile.
class Holder {
public:
    explicit Holder(const std::string& path)
        : m_file(CreateFileW(ScratchFolder::FromUtf8(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                             OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {}
    ~Holder() { CloseHandle(m_file); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

private:
    HANDLE m_file;
};

} // namespace TestSupport
