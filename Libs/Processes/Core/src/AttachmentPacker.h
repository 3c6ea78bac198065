#pragma once

#include <string>
#include <vector>

#include "Libs/Processes/Core/src/AttachmentLimit.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Brings the files of one submission from its folder into its work folder, each in the form in which the
// package stores it. Whole files go through memory, one at a time. Lives for one submission on the packager's
// thread; the limits outlive it.
class AttachmentPacker {
public:
    AttachmentPacker(std::string submissionFolder, std::string workFolder,
                     const std::vector<AttachmentLimit>& limits);

    // Stores the attachment's file and sets its MD5:
    //   dump.dmp, plain in the folder        truncated when over its limit, compressed, stored as dump.dmp.gz
    //   game.log, there only as game.log.gz  copied as game.log.gz
    //   data.tgz                             copied as data.tgz
    // A name that is not safe to open, or whose file lies behind a link, is as good as a missing file. No
    // exception leaves; a file that does not fit in memory is a failure.
    ResultCode Pack(Attachment& attachment) const;

private:
    ResultCode PackFile(Attachment& attachment) const;
    ResultCode Copy(const std::string& storedName, std::string& md5) const;
    ResultCode Compress(const std::string& file, std::string& md5) const;
    ResultCode Store(const std::string& storedName, const std::vector<uint8_t>& bytes) const;

    std::string m_submissionFolder;
    std::string m_workFolder;
    const std::vector<AttachmentLimit>& m_limits;
};
