#include "Libs/Processes/Core/src/PackageWriter.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

constexpr char NotOpened[] = "Failed to open package file for writing";

constexpr char NotWritten[] = "Failed to write package file";

// No SubmissionFault: what was prepared a moment ago was taken away.
constexpr ResultCode NotThere = "Failed to open input file";

// What a work folder holds, in the order of the package.
class PreparedSubmission {
public:
    explicit PreparedSubmission(const std::string& workFolder)
        : m_workFolder(workFolder), m_work(workFolder) {}

    // Measures before anything is written. A file that can't be measured counts nothing: reading it will say
    // why.
    ResultCode ReadHeader() {
        Platform::File file;
        if (!m_work.OpenFile(HeaderFile::Name, "", file)) {
            return NotThere;
        }
        RETURN_IF_FAILED(Platform::ReadFileBytes(file, m_headerBytes));
        RETURN_IF_FAILED(HeaderFile::Parse(Platform::TextOf(m_headerBytes), m_header));
        uint64_t size = m_headerBytes.size();
        for (const Attachment* entry : m_header.catalog.FilesInPackageOrder()) {
            Platform::FileInfo info;
            static_cast<void>(Platform::QueryInfo(FolderPath::Join(m_workFolder, entry->file + ".gz"), info));
            size += PackageFormat::EntryPrefixSize + info.size;
        }
        return size > PackageFormat::MaxLength ? ResultCode(SubmissionFault::TooLong) : Platform::Success;
    }

    ResultCode Compose(PackageFormat::Target target, uint64_t& size) const {
        PackageFormat::Composer composer(std::move(target));
        RETURN_IF_FAILED(composer.AppendHeader(m_headerBytes));
        for (const Attachment* entry : m_header.catalog.FilesInPackageOrder()) {
            Platform::File file;
            if (const ResultCode opened = m_work.OpenFile(entry->file, ".gz", file); !opened) {
                return LooksCompressed(entry->file) ? opened : NotThere; // stored without ".gz"
            }
            Platform::FileSource data(std::move(file));
            if (data.GetSize() == 0) {
                return "Failed to read zero length input file!";
            }
            RETURN_IF_FAILED(composer.AppendEntry(data, entry->md5));
        }
        return composer.Finish(size);
    }

private:
    const std::string& m_workFolder;
    const SubmissionFolder m_work;
    std::vector<uint8_t> m_headerBytes;
    BugHeader m_header;
};

ResultCode Write(const std::string& path, const PreparedSubmission& submission) {
    Platform::File package;
    if (package.Open(path, Platform::FileWrite | Platform::FileCreateAndTruncate) != Platform::NoError) {
        return NotOpened;
    }
    uint64_t size = 0;
    RETURN_IF_FAILED(submission.Compose(
        [&](uint64_t offset, std::span<const uint8_t> bytes) -> ResultCode {
            return package.Write(offset, bytes) == Platform::NoError ? Platform::Success
                                                                     : ResultCode(NotWritten);
        },
        size));
    const bool isFlushed = package.Flush() == Platform::NoError;
    return package.Close() && isFlushed ? Platform::Success : ResultCode(NotWritten);
}

// Success if the finished package at path is the one that would be written.
ResultCode Compare(const std::string& path, const PreparedSubmission& submission) {
    Platform::File present;
    if (present.Open(path, Platform::FileRead, Platform::ShareAll) != Platform::NoError) {
        return NotOpened;
    }
    Platform::FileSource package(std::move(present));
    std::vector<uint8_t> found;
    uint64_t size = 0;
    RETURN_IF_FAILED(submission.Compose(
        [&](uint64_t offset, std::span<const uint8_t> bytes) -> ResultCode {
            found.resize(bytes.size());
            return package.Read(offset, found) && std::ranges::equal(found, bytes) ? Platform::Success
                                                                                   : ResultCode(NotOpened);
        },
        size));
    return size == package.GetSize() ? Platform::Success : ResultCode(NotOpened);
}

// Logs nothing: the failure that led here is logged. A folder that holds anything else stays.
void RemoveHalfPackage(const std::string& folder, const std::string& path) {
    const Platform::SystemPath file = path;
    const Platform::SystemPath parent = folder;
    static_cast<void>(Platform::RetryWhileHeld([&] { return Platform::RemoveFile(file); }));
    static_cast<void>(Platform::RetryWhileHeld([&] { return Platform::RemoveEmptyFolder(parent); }));
}

} // namespace

// Asked before writing, since not every system keeps a program with all rights from writing to such a file.
bool IsFinishedPackage(const std::string& path) {
    Platform::FileInfo info;
    return Platform::QueryInfo(path, info) == Platform::NoError && info.IsReadOnly();
}

ResultCode PackageWriter::Generate(const std::string& name) const {
    PLATFORM_LOG(Platform::InfoLog, " Starting packaging of file %s...", name.c_str());
    const std::string workFolder = FolderPath::Join(m_config.packageWorkFolder, name);
    const std::string targetFolder = FolderPath::Join(m_config.packagedFolder, name);
    const std::string path = FolderPath::Join(targetFolder, m_config.submissionFilename);
    if (workFolder.empty()) {
        return "Submission folder is invalid";
    }
    RETURN_IF_FAILED(PlatformHelpers::EnsureFolderExists(targetFolder));
    const ResultCode result = ExceptionToResult([&] { return WriteAndFinish(path, workFolder); });
    if (!result && !IsFinishedPackage(path)) {
        RemoveHalfPackage(targetFolder, path);
    }
    return result;
}

ResultCode PackageWriter::WriteAndFinish(const std::string& path, const std::string& workFolder) const {
    {
        PreparedSubmission submission(workFolder); // holds the work folder open
        RETURN_IF_FAILED(submission.ReadHeader());
        RETURN_IF_FAILED(IsFinishedPackage(path) ? Compare(path, submission) : Write(path, submission));
    }
    if (!m_keepWorkFolder) {
        // A work folder that can't be deleted is logged; the package is sent nevertheless.
        static_cast<void>(PlatformHelpers::RemoveFolder(workFolder));
    }
    return PlatformHelpers::MakeFileReadOnly(path);
}
