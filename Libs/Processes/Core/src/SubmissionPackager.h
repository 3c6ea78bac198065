#pragma once

#include <string>

#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

class AttachmentPacker;

// Prepares one submission in its work folder: filters, limits, compresses and hashes its files and rewrites
// its header. Never changes the submission folder. Lives on the packager's thread; configuration (its folders
// resolved) and black list outlive it.
class SubmissionPackager {
public:
    SubmissionPackager(const PackagerConfig& config, const AttachmentBlacklist& blacklist)
        : m_config(config), m_blacklist(blacklist) {}

    // The name under which the submission goes on; empty in a folder path that has none. A file that can't be
    // packaged is logged and leaves the header; only the header and the work folder itself can fail the
    // submission.
    ResultCode Prepare(const std::string& submissionFolder, std::string& name) const;

private:
    void PackCatalog(const AttachmentPacker& packer, Catalog& catalog) const;
    bool IsKept(const AttachmentPacker& packer, Attachment& attachment) const;
    bool IsDroppedByBlacklist(const std::string& file) const;

    const PackagerConfig& m_config;
    const AttachmentBlacklist& m_blacklist;
};
