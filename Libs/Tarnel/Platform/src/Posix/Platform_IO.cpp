#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_OpenFile.h"
#include "Libs/Tarnel/Types/src/Types_Limits.h"

// Share modes have no counterpart here and are not looked at.
namespace Platform {
namespace {

int DescriptorOf(const File& file) {
    return static_cast<int>(file.handle);
}

int OpenFlags(uint32_t flags) {
    const bool both = (flags & FileRead) && (flags & FileWrite);
    const int access = both ? O_RDWR : (flags & FileWrite) ? O_WRONLY : O_RDONLY;
    return access | ((flags & FileCreateAndTruncate) ? O_CREAT | O_TRUNC : 0) | O_CLOEXEC;
}

int OpenSystemFile(const File& file, const wchar_t* path) {
    std::string systemPath;
    if (!path || WideToUtf8(path, systemPath) != EncodingOutcome::Done) {
        return -1;
    }
    return open(systemPath.c_str(), OpenFlags(file.accessFlags), 0666);
}

} // namespace

OpenOutcome TryOpenFile(File& file, const wchar_t* path) {
    if (file.handle != File::InvalidHandle) {
        return OpenOutcome::AlreadyOpen;
    }
    if (!(file.accessFlags & (FileRead | FileWrite))) {
        return OpenOutcome::NoAccess;
    }
    const int descriptor = OpenSystemFile(file, path);
    if (descriptor < 0) {
        return OpenOutcome::Refused;
    }
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) {
        close(descriptor);
        return OpenOutcome::NoSize;
    }
    file.handle = descriptor;
    file.size = static_cast<uint64_t>(status.st_size);
    file.position = 0;
    return OpenOutcome::Done;
}

void ReportOpenOutcome(OpenOutcome outcome) {
    PLATFORM_ASSERT_TEXT_MESSAGE(outcome != OpenOutcome::NoAccess, "false",
                                 "File access flags not specified");
    PLATFORM_ASSERT_TEXT_MESSAGE(outcome != OpenOutcome::NoSize, "false", "Invalid file size, closing file");
}

bool OpenFile(File& file, const wchar_t* path) {
    const OpenOutcome outcome = TryOpenFile(file, path);
    ReportOpenOutcome(outcome);
    return outcome == OpenOutcome::Done;
}

bool CloseFile(File& file) {
    PLATFORM_ASSERT_TEXT_MESSAGE(file.handle != File::InvalidHandle, "file_handle != INVALID_HANDLE_VALUE",
                                 "Invalid File Handle passed into CloseFile");
    if (file.handle == File::InvalidHandle) {
        return false;
    }
    const bool isClosed = close(DescriptorOf(file)) == 0;
    PLATFORM_ASSERT_TEXT_MESSAGE(isClosed, "false", "File close failed");
    if (isClosed) {
        file.handle = File::InvalidHandle;
        file.accessFlags = 0;
        file.position = 0;
        file.size = 0;
    }
    return isClosed;
}

bool WriteFileAt(File& file, uint64_t uiPos, const void* data, uint32_t length) {
    const ssize_t written = pwrite(DescriptorOf(file), data, length, static_cast<off_t>(uiPos));
    if (written < 0) {
        const auto error = static_cast<unsigned>(errno);
        PLATFORM_ASSERT_MESSAGE(false, "File write failed. Error code is %u", error);
        return false;
    }
    const auto nBytesWritten = static_cast<uint64_t>(written);
    PLATFORM_ASSERT_TEXT(nBytesWritten <= Types::Limits<size_t>::Max - uiPos,
                         "nBytesWritten <= (Types::Limits<size_t>::Max - uiPos)");
    file.position = uiPos + nBytesWritten;
    if (file.position > file.size) {
        file.size = file.position;
    }
    return nBytesWritten == length;
}

} // namespace Platform
