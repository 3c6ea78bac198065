#include "Libs/Processes/Core/src/PackageWriter.h"

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

constexpr char NotOpened[] = "Failed to open package file for writing";

// A file that can't be measured counts nothing: reading it will say why.
std::size_t BodySize(std::size_t headerSize, const std::vector<const Attachment*>& files,
                     const std::string& workFolder) {
    uint64_t size = headerSize;
    for (const Attachment* file : files) {
        Platform::FileInfo info;
        if (Platform::QueryInfo(FolderPath::Join(workFolder, file->file + ".gz"), info) ==
            Platform::NoError) {
            size += PackageFormat::EntryPrefixSize + info.size;
        }
    }
    return static_cast<std::size_t>(size);
}

ResultCode ReadPrepared(const SubmissionFolder& work, const std::string& name, const char* ending,
                        std::vector<uint8_t>& bytes) {
    Platform::File file;
    RETURN_IF_FAILED(work.OpenFile(name, ending, file));
    return ReadAttachment(file, bytes);
}

bool HoldsExactly(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::vector<uint8_t> present;
    return Platform::ReadWholeFile(path, present) == Platform::ReadOutcome::Done && present == bytes;
}

ResultCode Write(const std::string& path, const std::vector<uint8_t>& package) {
    switch (Platform::WriteWholeFile(path, package, Platform::WriteDurability::FlushToDisk)) {
    case Platform::WriteOutcome::Done:
        return Platform::Success;
    case Platform::WriteOutcome::OpenFailed:
        return NotOpened;
    default:
        return "Failed to write package file";
    }
}

// Without a word in the log: the failure that leads here has its own. A folder that holds anything else
// stays.
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
    std::vector<uint8_t> package;
    RETURN_IF_FAILED(Compose(workFolder, package));
    RETURN_IF_FAILED(PlatformHelpers::EnsureFolderExists(targetFolder));
    const ResultCode result = ExceptionToResult([&] { return WriteAndFinish(path, package, workFolder); });
    if (!result && !IsFinishedPackage(path)) {
        RemoveHalfPackage(targetFolder, path);
    }
    return result;
}

ResultCode PackageWriter::WriteAndFinish(const std::string& path, const std::vector<uint8_t>& package,
                                         const std::string& workFolder) const {
    if (!IsFinishedPackage(path)) {
        RETURN_IF_FAILED(Write(path, package));
    } else if (!HoldsExactly(path, package)) {
        return NotOpened;
    }
    if (!m_keepWorkFolder) {
        // A work folder that can't be deleted is logged; the package is sent all the same.
        static_cast<void>(PlatformHelpers::RemoveFolder(workFolder));
    }
    return PlatformHelpers::MakeFileReadOnly(path);
}

ResultCode PackageWriter::Compose(const std::string& workFolder, std::vector<uint8_t>& package) const {
    if (workFolder.empty()) {
        return "Submission folder is invalid";
    }
    const SubmissionFolder work(workFolder);
    std::vector<uint8_t> headerBytes;
    RETURN_IF_FAILED(ReadPrepared(work, HeaderFile::Name, "", headerBytes));
    BugHeader header;
    RETURN_IF_FAILED(
        HeaderFile::Parse({reinterpret_cast<const char*>(headerBytes.data()), headerBytes.size()}, header));
    const std::vector<const Attachment*> files = header.catalog.FilesInPackageOrder();
    PackageFormat::Composer composer(headerBytes, BodySize(headerBytes.size(), files, workFolder));
    for (const Attachment* file : files) {
        std::vector<uint8_t> data;
        RETURN_IF_FAILED(ReadPrepared(work, file->file, ".gz", data));
        composer.AppendEntry(data);
    }
    package = composer.Take();
    return Platform::Success;
}
