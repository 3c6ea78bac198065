#include "Libs/Processes/Core/src/AttachmentPacker.h"

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Deflate.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

namespace {

bool IsMissing(ResultCode result) {
    return result.Text() == SubmissionFault::NoFile;
}

} // namespace

ResultCode AttachmentPacker::Pack(Attachment& attachment) const {
    return ExceptionToResult([&] { return PackFile(attachment); });
}

ResultCode AttachmentPacker::PackFile(Attachment& attachment) const {
    const std::string& name = attachment.file;
    Platform::File file;
    const ResultCode plain = m_submission.OpenFile(name, "", file);
    if (LooksCompressed(name)) {
        return plain ? Copy(file, name, attachment.md5) : plain;
    }
    if (!IsMissing(plain)) {
        return plain ? Compress(file, name, attachment.md5) : plain;
    }
    const ResultCode compressed = m_submission.OpenFile(name, ".gz", file);
    if (!compressed) {
        return IsMissing(compressed) ? SubmissionFault::NoAttachment : compressed;
    }
    return Copy(file, name + ".gz", attachment.md5);
}

ResultCode AttachmentPacker::Copy(Platform::File& file, const std::string& storedName,
                                  std::string& md5) const {
    std::vector<uint8_t> bytes;
    RETURN_IF_FAILED(ReadAttachment(file, bytes));
    md5 = Crypto::MD5OfBytes(bytes);
    return Store(storedName, bytes);
}

ResultCode AttachmentPacker::Compress(Platform::File& source, const std::string& file,
                                      std::string& md5) const {
    std::vector<uint8_t> compressed;
    {
        std::vector<uint8_t> attBytes; // freed before the compressed form is hashed and written
        RETURN_IF_FAILED(ReadAttachment(source, attBytes));
        if (IsAttachmentOverSizeLimit(m_limits, file, attBytes.size())) {
            TruncateToSizeLimit(m_limits, file, attBytes);
        }
        RETURN_IF_FAILED(PlatformHelpers::Compress(attBytes, compressed));
    }
    md5 = Crypto::MD5OfBytes(compressed);
    return Store(file + ".gz", compressed);
}

ResultCode AttachmentPacker::Store(const std::string& storedName, const std::vector<uint8_t>& bytes) const {
    const std::string path = FolderPath::Join(m_workFolder, storedName);
    if (storedName.find_first_of("\\/") != std::string::npos) {
        RETURN_IF_FAILED(PlatformHelpers::EnsureFolderExists(path.substr(0, path.find_last_of("\\/"))));
    }
    switch (Platform::WriteWholeFile(path, bytes)) {
    case Platform::WriteOutcome::Done:
        return Platform::Success;
    case Platform::WriteOutcome::OpenFailed:
        return "Failed to open input file";
    default:
        static_cast<void>(Platform::RemoveFile(path)); // the space is for the next one
        return "Failed to write file bytes";
    }
}
