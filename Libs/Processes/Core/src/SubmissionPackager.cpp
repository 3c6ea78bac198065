#include "Libs/Processes/Core/src/SubmissionPackager.h"

#include <utility>
#include <vector>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

ResultCode SubmissionPackager::Prepare(const std::string& submissionFolder, std::string& name,
                                       JsonProblem& headerProblem) const {
    name = FolderPath::LastComponent(submissionFolder).value_or("");
    if (name.empty()) {
        return SubmissionFault::NoName;
    }
    const std::string workFolder = FolderPath::Join(m_config.packageWorkFolder, name);
    RETURN_IF_FAILED(PlatformHelpers::EnsureFolderExists(workFolder));
    PLATFORM_LOG(Platform::InfoLog, " Starting packaging submission %s...", name.c_str());
    const SubmissionFolder submission(submissionFolder);
    BugHeader header;
    RETURN_IF_FAILED(submission.ReadHeader(header, headerProblem));
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
        const bool namesNoFile = attachment.file.empty(); // such a record stays in the header
        if (IsDroppedByBlacklist(attachment.file)) {
            continue;
        }
        RETURN_IF_FAILED(PackOrEmpty(packer, attachment));
        if (namesNoFile || !attachment.file.empty()) {
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
