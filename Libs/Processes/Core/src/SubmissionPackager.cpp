#include "Libs/Processes/Core/src/SubmissionPackager.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Deflate.h"
#include "Libs/Processes/Core/src/AttachmentLimit.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

// Brings the files of one submission into its work folder, each in the form in which the package stores it.
// Whole files go through memory, one at a time. Lives for one submission on the packager's thread; the
// submission and the limits outlive it.
class AttachmentPacker {
public:
    AttachmentPacker(const SubmissionFolder& submission, std::string workFolder,
                     const std::vector<AttachmentLimit>& limits)
        : m_submission(submission), m_workFolder(std::move(workFolder)), m_limits(limits) {}

    // Stores the attachment's file and sets its MD5:
    //   dump.dmp, plain in the folder        truncated if over its limit, compressed, stored as dump.dmp.gz
    //   game.log, there only as game.log.gz  copied as game.log.gz
    //   data.tgz                             copied as data.tgz
    // A failure leaves nothing of it in the work folder. No exception leaves; memory that runs out is a
    // failure.
    ResultCode Pack(Attachment& attachment) const;

private:
    ResultCode PackFile(Attachment& attachment) const;
    ResultCode Copy(Platform::File& file, const std::string& storedName, std::string& md5) const;
    ResultCode Compress(Platform::File& source, const std::string& file, std::string& md5) const;
    ResultCode Store(const std::string& storedName, const std::vector<uint8_t>& bytes) const;

    const SubmissionFolder& m_submission;
    std::string m_workFolder;
    const std::vector<AttachmentLimit>& m_limits;
};

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

ResultCode SubmissionPackager::Prepare(const std::string& submissionFolder, std::string& name) const {
    name = FolderPath::LastComponent(submissionFolder).value_or("");
    if (name.empty()) {
        return SubmissionFault::NoName;
    }
    const std::string workFolder = FolderPath::Join(m_config.packageWorkFolder, name);
    RETURN_IF_FAILED(PlatformHelpers::EnsureFolderExists(workFolder));
    PLATFORM_LOG(Platform::InfoLog, " Starting packaging submission %s...", name.c_str());
    const SubmissionFolder submission(submissionFolder);
    BugHeader header;
    RETURN_IF_FAILED(submission.ReadHeader(header));
    RETURN_IF_FAILED(
        PackCatalog(AttachmentPacker(submission, workFolder, m_config.attachmentLimits), header.catalog));
    header.source = m_config.source;
    if (header.instanceKey.empty()) {
        header.instanceKey = header.catalog.DeriveInstanceKey();
    }
    RETURN_IF_FAILED(HeaderFile::Write(workFolder, header));
    PLATFORM_LOG(Platform::InfoLog, " Packaged folder %s for submission", name.c_str());
    return Platform::Success;
}

ResultCode SubmissionPackager::PackCatalog(const AttachmentPacker& packer, Catalog& catalog) const {
    RETURN_IF_FAILED(PackOrEmpty(packer, catalog.dump));
    RETURN_IF_FAILED(PackOrEmpty(packer, catalog.log));
    std::vector<Attachment> kept;
    for (Attachment& attachment : catalog.attachments) {
        const bool standsForNoFile = attachment.file.empty(); // here and in the package
        if (IsDroppedByBlacklist(attachment.file)) {
            continue;
        }
        RETURN_IF_FAILED(PackOrEmpty(packer, attachment));
        if (standsForNoFile || !attachment.file.empty()) {
            kept.push_back(std::move(attachment));
        }
    }
    catalog.attachments = std::move(kept);
    return Platform::Success;
}

ResultCode SubmissionPackager::PackOrEmpty(const AttachmentPacker& packer, Attachment& attachment) const {
    if (attachment.file.empty()) {
        return Platform::Success;
    }
    const ResultCode result = packer.Pack(attachment);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to copy or compress attachment %s. Error=%s",
                     Platform::ShownName(attachment.file).text, result.Text());
        if (m_config.keepFailedSubmissions && !SubmissionFault::Is(result)) {
            return result;
        }
        attachment = {};
    }
    return Platform::Success;
}

bool SubmissionPackager::IsDroppedByBlacklist(const std::string& file) const {
    if (file.empty() || file.size() > MaxAttachmentNameLength) {
        return false; // nothing to search, or too much; packing refuses that
    }
    switch (m_blacklist.Judge(file)) {
    case AttachmentBlacklist::Verdict::Listed:
        PLATFORM_LOG(Platform::InfoLog, " Dropped black listed attachment %s",
                     Platform::ShownName(file).text);
        return true;
    case AttachmentBlacklist::Verdict::Unknown:
        PLATFORM_LOG(Platform::ErrorLog,
                     " Dropped attachment %s, which could not be checked against the black list",
                     Platform::ShownName(file).text);
        return true;
    case AttachmentBlacklist::Verdict::Allowed:
        break;
    }
    return false;
}
