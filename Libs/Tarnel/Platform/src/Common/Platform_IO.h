#pragma once

#include <cstdint>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Files and folders at the level of the operating system. Wide paths are the system's own form: UTF-16 on
// Windows, one code point a unit elsewhere. Nothing here logs.
namespace Platform {

enum FileAccess : uint32_t {
    FileRead = 1,
    FileWrite = 2,
    FileCreateAndTruncate = 4, // else an existing file is opened
    FileRandomAccess = 8,      // else sequential access is announced
};

enum FileShare : uint32_t { ShareNone = 0, ShareRead = 1, ShareWrite = 2, ShareDelete = 4 };

// One file, opened or not. Plain data: whoever opens it closes it.
struct File {
    static constexpr intptr_t InvalidHandle = -1;

    intptr_t handle = InvalidHandle;
    uint32_t accessFlags = 0;
    uint32_t shareMode = ShareRead;
    uint64_t position = 0; // after the last write
    uint64_t size = 0;     // at opening, raised by writes past the end
};

// Opens path as accessFlags and shareMode of the record say. False when the record is open already, when the
// flags name no access, or when the system refuses.
[[nodiscard]] bool OpenFile(File& file, const wchar_t* path);
bool CloseFile(File& file);

[[nodiscard]] bool WriteFileAt(File& file, uint64_t offset, const void* data, uint32_t length);

// Creates one folder, or a folder with its parents; true also when it exists already.
[[nodiscard]] bool CreateOneDirectory(const wchar_t* path);
[[nodiscard]] bool CreateDirectoryTree(const wchar_t* path);
[[nodiscard]] bool CreateOneDirectory(const char* path);
[[nodiscard]] bool CreateDirectoryTree(const char* path);

} // namespace Platform
