#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Libs/Framework/Core/src/ApplicationProcessBase.h"
#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/IWatcher.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"

// Takes complete submission folders from a watcher and turns each into a package in the packaged folder. A
// folder is deleted after its attempt, whether or not that succeeded, so that a failing submission is not
// tried again; the configuration can keep those that failed through no fault of their own. Killed at any step
// and started again it makes the same package: the folder is deleted only after the package is on the disk.
// Two packagers must not share a work folder.
class Packager : public ApplicationProcessBase {
public:
    using ApplicationProcessBase::ApplicationProcessBase;

    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    ResultCode PostInitialize() override;
    bool ThreadMain() override;

private:
    ResultCode PrepareFolders();
    ResultCode PrepareFolder(std::string& folder, const char* defaultName, const char* kind) const;
    ResultCode CompileBlacklist();
    void ProcessAll(std::vector<TaskData>& tasks) const;
    void Process(const std::string& submissionFolder) const;
    ResultCode Package(const std::string& submissionFolder) const;

    // Constant after PostInitialize.
    PackagerConfig m_config;
    AttachmentBlacklist m_blacklist;
    bool m_sharesFolder = false; // the work folder is the packaged folder
    std::shared_ptr<IApplicationProcess> m_watcherProcPtr;
    std::string m_dumpsFolder; // the watcher's
    std::string m_sentinelFile;
};
Reflection_DeclarePolymorphicType(Packager);
