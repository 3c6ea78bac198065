#pragma once

#include <string>

#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/AttachmentPacker.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Prepares one submission in its work folder: filters, limits, compresses and hashes its files and rewrites
// its header. Never changes the submission folder. Lives on the packager's thread; configuration (its folders
// resolved) and blacklist outlive it.
class SubmissionPackager {
public:
    SubmissionPackager(const PackagerConfig& config, const AttachmentBlacklist& blacklist)
        : m_config(config), m_blacklist(blacklist) {}

    // Gives the submission's name, which is empty for a path that has none, and what is wrong with its header
    // (see HeaderFile::Parse). A file that can't be packaged is logged and removed from the header. It fails
    // the submission only if the machine is at fault and the configuration keeps such submissions.
    ResultCode Prepare(const std::string& submissionFolder, std::string& name,
                       JsonProblem& headerProblem) const;

private:
    ResultCode PackCatalog(const AttachmentPacker& packer, Catalog& catalog) const;
    ResultCode PackOrEmpty(const AttachmentPacker& packer, Attachment& attachment) const;
    bool IsDroppedByBlacklist(const std::string& file) const;

    const PackagerConfig& m_config;
    const AttachmentBlacklist& m_blacklist;
};
