#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Libs/Processes/Core/src/AttachmentLimit.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Brings the files of one submission into its work folder, each in the form in which the package stores it. A
// file goes through memory in pieces, and is hashed while it is written. Lives for one submission on the
// packager's thread; the submission and the limits outlive it.
class AttachmentPacker {
public:
    AttachmentPacker(const SubmissionFolder& submission, std::string workFolder,
                     const std::vector<AttachmentLimit>& limits)
        : m_submission(submission), m_workFolder(std::move(workFolder)), m_limits(limits) {}

    // Stores the attachment's file and sets its MD5: truncated if over its limit and compressed as
    // dump.dmp.gz, or, if it is already compressed in the folder, unchanged: game.log.gz, data.tgz. A failure
    // leaves nothing of it in the work folder. No exception leaves; memory that runs out is a failure.
    ResultCode Pack(Attachment& attachment) const;

private:
    ResultCode PackFile(Attachment& attachment) const;
    ResultCode Copy(Platform::ByteSource& source, const std::string& storedName, std::string& md5) const;
    ResultCode Compress(Platform::ByteSource& source, const std::string& name, std::string& md5) const;

    const SubmissionFolder& m_submission;
    std::string m_workFolder;
    const std::vector<AttachmentLimit>& m_limits;
};
