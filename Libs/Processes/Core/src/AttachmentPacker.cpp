#include "Libs/Processes/Core/src/AttachmentPacker.h"

#include <utility>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Deflate.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PathIdentity.h"
#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

namespace {

constexpr char NotOnDisk[] = "Failed to find attachment on disk";
constexpr char NotOpened[] = "Failed to open input file";

} // namespace

AttachmentPacker::AttachmentPacker(std::string submissionFolder, std::string workFolder,
                                   const std::vector<AttachmentLimit>& limits)
    : m_submissionFolder(std::move(submissionFolder)), m_workFolder(std::move(workFolder)), m_limits(limits) {
}

ResultCode AttachmentPacker::Pack(Attachment& attachment) const {
    return ExceptionToResult([&] { return PackFile(attachment); });
}

ResultCode AttachmentPacker::PackFile(Attachment& attachment) const {
    const std::string& file = attachment.file;
    const bool isSafe = IsSafeAttachmentName(file);
    if (LooksCompressed(file)) {
        return isSafe && PathIdentity::LiesInside(m_submissionFolder, file) ? Copy(file, attachment.md5)
                                                                            : NotOpened;
    }
    if (!isSafe) {
        return NotOnDisk;
    }
    if (PathIdentity::LiesInside(m_submissionFolder, file)) {
        return Compress(file, attachment.md5);
    }
    if (PathIdentity::LiesInside(m_submissionFolder, file + ".gz")) {
        return Copy(file + ".gz", attachment.md5);
    }
    return NotOnDisk;
}

ResultCode AttachmentPacker::Copy(const std::string& storedName, std::string& md5) const {
    std::vector<uint8_t> bytes;
    const ResultCode result =
        Platform::ReadFileBytes(FolderPath::Join(m_submissionFolder, storedName), bytes);
    if (!result) {
        return result;
    }
    md5 = Crypto::MD5OfBytes(bytes);
    return Store(storedName, bytes);
}

ResultCode AttachmentPacker::Compress(const std::string& file, std::string& md5) const {
    std::vector<uint8_t> compressed;
    {
        std::vector<uint8_t> attBytes; // gone before the compressed form is hashed and written
        ResultCode result = Platform::ReadFileBytes(FolderPath::Join(m_submissionFolder, file), attBytes);
        if (!result) {
            return result;
        }
        if (IsAttachmentOverSizeLimit(m_limits, file, attBytes.size())) {
            TruncateToSizeLimit(m_limits, file, attBytes);
        }
        result = PlatformHelpers::Compress(attBytes, compressed);
        if (!result) {
            return result;
        }
    }
    md5 = Crypto::MD5OfBytes(compressed);
    return Store(file + ".gz", compressed);
}

ResultCode AttachmentPacker::Store(const std::string& storedName, const std::vector<uint8_t>& bytes) const {
    const std::string path = FolderPath::Join(m_workFolder, storedName);
    if (storedName.find_first_of("\\/") != std::string::npos) {
        const ResultCode result =
            PlatformHelpers::EnsureFolderExists(path.substr(0, path.find_last_of("\\/")));
        if (!result) {
            return result;
        }
    }
    switch (Platform::WriteWholeFile(path, bytes)) {
    case Platform::WriteOutcome::OpenFailed:
        return NotOpened;
    case Platform::WriteOutcome::WriteFailed:
        return "Failed to write file bytes";
    case Platform::WriteOutcome::Done:
        break;
    }
    return Platform::Success;
}
