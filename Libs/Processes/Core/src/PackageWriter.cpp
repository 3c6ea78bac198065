#include "Libs/Processes/Core/src/PackageWriter.h"

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

std::vector<std::string> EntryPaths(const Catalog& catalog, const std::string& workFolder) {
    std::vector<std::string> paths;
    for (const Attachment* attachment : catalog.FilesInPackageOrder()) {
        paths.push_back(FolderPath::Join(workFolder, attachment->file + ".gz"));
    }
    return paths;
}

// Files that can't be measured count nothing: reading them will say why.
std::size_t BodySize(std::size_t headerSize, const std::vector<std::string>& paths) {
    uint64_t size = headerSize;
    for (const std::string& path : paths) {
        PlatformHelpers::FileStatus status;
        if (PlatformHelpers::PathExists(path) && PlatformHelpers::QueryFileStatus(path, status).Succeeded()) {
            size += PackageFormat::EntryPrefixSize + status.size;
        }
    }
    return static_cast<std::size_t>(size);
}

// Read-only marks a package as finished. Asked for beforehand, since not every system keeps a program with
// all rights from writing to such a file.
bool IsFinished(const std::string& path) {
    PlatformHelpers::FileStatus status;
    return PlatformHelpers::PathExists(path) && PlatformHelpers::QueryFileStatus(path, status).Succeeded() &&
           status.isReadOnly;
}

bool HoldsExactly(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::vector<uint8_t> present;
    return Platform::ReadWholeFile(path, present) == Platform::ReadOutcome::Done && present == bytes;
}

ResultCode Write(const std::string& path, const std::vector<uint8_t>& package) {
    constexpr ResultCode NotOpened = "Failed to open package file for writing";
    if (IsFinished(path)) {
        return HoldsExactly(path, package) ? Platform::Success : NotOpened;
    }
    switch (Platform::WriteWholeFile(path, package, Platform::WriteDurability::FlushToDisk)) {
    case Platform::WriteOutcome::OpenFailed:
        return NotOpened;
    case Platform::WriteOutcome::WriteFailed:
        return "Failed to write package file";
    case Platform::WriteOutcome::Done:
        break;
    }
    return Platform::Success;
}

} // namespace

ResultCode PackageWriter::Generate(const std::string& name) const {
    PLATFORM_LOG(Platform::InfoLog, " Starting packaging of file %s...", name.c_str());
    const std::string workFolder = FolderPath::Join(m_config.packageWorkFolder, name);
    const std::string targetFolder = FolderPath::Join(m_config.packagedFolder, name);
    const std::string path = FolderPath::Join(targetFolder, m_config.submissionFilename);
    {
        std::vector<uint8_t> package;
        if (const ResultCode result = Compose(workFolder, package); !result) {
            return result;
        }
        if (const ResultCode result = PlatformHelpers::EnsureFolderExists(targetFolder); !result) {
            return result;
        }
        if (const ResultCode result = Write(path, package); !result) {
            return result;
        }
    }
    // A work folder that can't be removed must not keep the finished package from being sent.
    const ResultCode removal = m_keepWorkFolder ? Platform::Success : RemoveWorkFolder(workFolder);
    const ResultCode completion = PlatformHelpers::MakeFileReadOnly(path);
    return completion ? removal : completion;
}

ResultCode PackageWriter::Compose(const std::string& workFolder, std::vector<uint8_t>& package) const {
    std::vector<uint8_t> headerBytes;
    if (const ResultCode result = HeaderFile::ReadRaw(workFolder, headerBytes); !result) {
        return result;
    }
    BugHeader header;
    if (const ResultCode result = HeaderFile::Read(workFolder, header); !result) {
        return result;
    }
    const std::vector<std::string> paths = EntryPaths(header.catalog, workFolder);
    PackageFormat::Composer composer;
    if (const ResultCode result = composer.Start(headerBytes, BodySize(headerBytes.size(), paths)); !result) {
        return result;
    }
    for (const std::string& path : paths) {
        std::vector<uint8_t> data;
        if (const ResultCode result = Platform::ReadFileBytes(path, data); !result) {
            return result;
        }
        if (const ResultCode result = composer.AppendEntry(data); !result) {
            return result;
        }
    }
    package = composer.Take();
    return Platform::Success;
}

ResultCode PackageWriter::RemoveWorkFolder(const std::string& workFolder) const {
    if (workFolder.empty()) {
        return "Submission folder is invalid";
    }
    return PlatformHelpers::RemoveFolder(workFolder);
}
