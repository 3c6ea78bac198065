#include "Libs/Processes/Core/src/SubmissionPackager.h"

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/AttachmentPacker.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PathIdentity.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

bool PackOrLog(const AttachmentPacker& packer, Attachment& attachment) {
    const ResultCode result = packer.Pack(attachment);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to copy or compress attachment %s. Error=%s",
                     attachment.file.c_str(), result.Text());
    }
    return result.Succeeded();
}

void PackOrEmpty(const AttachmentPacker& packer, Attachment& attachment) {
    if (!attachment.file.empty() && !PackOrLog(packer, attachment)) {
        attachment = {};
    }
}

// What a link stands for is somebody else's: neither a linked folder nor a linked header is read.
ResultCode ReadHeader(const std::string& submissionFolder, BugHeader& header) {
    if (PathIdentity::IsLink(submissionFolder) ||
        !PathIdentity::LiesInside(submissionFolder, HeaderFile::Name)) {
        return "Failed to open json header data in dump folder!";
    }
    return HeaderFile::Read(submissionFolder, header);
}

} // namespace

ResultCode SubmissionPackager::Prepare(const std::string& submissionFolder, std::string& name) const {
    name = FolderPath::LastComponent(submissionFolder).value_or("");
    if (name.empty()) {
        return "Failed to find submission folder name in folder path";
    }
    const std::string workFolder = FolderPath::Join(m_config.packageWorkFolder, name);
    if (const ResultCode result = PlatformHelpers::EnsureFolderExists(workFolder); !result) {
        return result;
    }
    PLATFORM_LOG(Platform::InfoLog, " Starting packaging submission %s...", name.c_str());
    BugHeader header;
    if (const ResultCode result = ReadHeader(submissionFolder, header); !result) {
        return result;
    }
    PackCatalog(AttachmentPacker(submissionFolder, workFolder, m_config.attachmentLimits), header.catalog);
    header.source = m_config.source;
    if (header.instanceKey.empty()) {
        header.instanceKey = header.catalog.DeriveInstanceKey();
    }
    if (const ResultCode result = HeaderFile::Write(workFolder, header); !result) {
        return result;
    }
    PLATFORM_LOG(Platform::InfoLog, " Packaged folder %s for submission", name.c_str());
    return Platform::Success;
}

void SubmissionPackager::PackCatalog(const AttachmentPacker& packer, Catalog& catalog) const {
    PackOrEmpty(packer, catalog.dump);
    PackOrEmpty(packer, catalog.log);
    // In header order: remove_if would leave the order of the calls open.
    std::vector<Attachment> kept;
    for (Attachment& attachment : catalog.attachments) {
        if (IsKept(packer, attachment)) {
            kept.push_back(std::move(attachment));
        }
    }
    catalog.attachments = std::move(kept);
}

bool SubmissionPackager::IsKept(const AttachmentPacker& packer, Attachment& attachment) const {
    if (attachment.file.empty()) {
        return true; // stands for no file, here and in the package
    }
    return !IsDroppedByBlacklist(attachment.file) && PackOrLog(packer, attachment);
}

bool SubmissionPackager::IsDroppedByBlacklist(const std::string& file) const {
    if (file.size() > MaxAttachmentNameLength) {
        return false; // too long to search; packing refuses it
    }
    switch (m_blacklist.Judge(file)) {
    case AttachmentBlacklist::Verdict::Listed:
        PLATFORM_LOG(Platform::InfoLog, " Dropped black listed attachment %s", file.c_str());
        return true;
    case AttachmentBlacklist::Verdict::Unknown:
        PLATFORM_LOG(Platform::ErrorLog,
                     " Dropped attachment %s, which could not be checked against the black list",
                     file.c_str());
        return true;
    case AttachmentBlacklist::Verdict::Allowed:
        break;
    }
    return false;
}
