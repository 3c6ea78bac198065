#include "Libs/Processes/Core/src/Packager.h"

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/IWatcher.h"
#include "Libs/Processes/Core/src/PackageWriter.h"
#include "Libs/Processes/Core/src/PathIdentity.h"
#include "Libs/Processes/Core/src/SubmissionPackager.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

Reflection_DefinePolymorphicType(Packager);

ResultCode Packager::Initialize(const JsonDocument& config, int, const char**) {
    if (const ResultCode result = ReadConfigSection(config, GetName(), m_config); !result) {
        return result;
    }
    if (const ResultCode result = PrepareFolders(); !result) {
        return result;
    }
    if (m_config.submissionFilename.empty()) {
        m_config.submissionFilename = DefaultName::Package;
    }
    if (const ResultCode result = CompileBlacklist(); !result) {
        return result;
    }
    const ApplicationBase* application = GetApplication();
    m_watcherProcPtr = application ? application->GetProcess(m_config.watcherName) : nullptr;
    if (!m_watcherProcPtr) {
        return "No watcher process to provide submission for packager";
    }
    PLATFORM_LOG(
        Platform::InfoLog,
        " Packager \"%s\" is packaging submissions with a file name of \"%s\" in folder \"%s\" for items "
        "gathered by watcher \"%s\"",
        GetName(), m_config.submissionFilename.c_str(), m_config.packagedFolder.c_str(),
        m_config.watcherName.c_str());
    return Platform::Success;
}

ResultCode Packager::PostInitialize() {
    std::string watched; // the watcher knows it now, whichever of the two came first
    if (const auto* watcher = Reflection::Query<IFileStoreWatcher>(*m_watcherProcPtr)) {
        watcher->GetFolder(watched);
    }
    return CheckPackagerFolders(m_config.packagedFolder, m_config.packageWorkFolder, watched,
                                &PathIdentity::IsSameFolder);
}

ResultCode Packager::PrepareFolders() {
    if (!PrepareFolder(m_config.packagedFolder, DefaultName::PackagedDumps, "").Succeeded()) {
        return "Failed to create packaged dumps folder";
    }
    if (!PrepareFolder(m_config.packageWorkFolder, DefaultName::PackageTemp, " work").Succeeded()) {
        return "Failed to create package work folder";
    }
    // Two texts for one folder must not make it look like a work folder that may go.
    m_sharesFolder = m_config.packageWorkFolder == m_config.packagedFolder ||
                     PathIdentity::IsSameFolder(m_config.packageWorkFolder, m_config.packagedFolder);
    return Platform::Success;
}

ResultCode Packager::PrepareFolder(std::string& folder, const char* defaultName, const char* kind) const {
    if (folder.empty()) {
        const ApplicationBase* application = GetApplication();
        folder =
            FolderPath::Join(application ? application->GetApplicationFolder() : std::string(), defaultName);
    }
    ResultCode result = PlatformHelpers::EnsureTrailingFolderSeparator(folder);
    if (result) {
        result = PlatformHelpers::EnsureFolderExists(folder);
    }
    if (!result) {
        PLATFORM_LOG(
            Platform::ErrorLog,
            " Packager \"%s\" failed to create package%s folder \"%s\" for items gathered by watcher "
            "\"%s\". Error=%s",
            GetName(), kind, folder.c_str(), m_config.watcherName.c_str(), result.Text());
    }
    return result;
}

ResultCode Packager::CompileBlacklist() {
    AttachmentBlacklist::BadPattern bad;
    const ResultCode result = m_blacklist.Compile(m_config.attachmentBlacklist, bad);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Invalid regular expression \"%s\" in black list for Packager \"%s\". Message=\"%s\"",
                     bad.pattern.c_str(), GetName(), bad.message.c_str());
    }
    return result;
}

bool Packager::ThreadMain() {
    PLATFORM_ASSERT(m_watcherProcPtr);
    IWatcher* pWatcher = m_watcherProcPtr ? Reflection::Query<IWatcher>(*m_watcherProcPtr) : nullptr;
    PLATFORM_ASSERT(pWatcher);
    if (!pWatcher) {
        return IsStopRequested();
    }
    return RunRounds(m_config.timeBetweenChecks, [&] {
        std::vector<TaskData> tasks;
        if (pWatcher->TakeTasks(tasks)) {
            WorkThrough(tasks);
        }
    });
}

// Folders of tasks that a stop leaves undone stay on disk for the next run.
void Packager::WorkThrough(std::vector<TaskData>& tasks) const {
    while (!tasks.empty() && !IsStopRequested()) {
        Process(tasks.back().GetInstanceHash());
        tasks.pop_back();
    }
}

void Packager::Process(const std::string& submissionFolder) const {
    std::string name;
    if (const ResultCode result = Package(submissionFolder, name); !result) {
        DiscardWork(name);
    }
    if (const ResultCode result = PlatformHelpers::RemoveFolder(submissionFolder); !result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to delete submission dump folder \"%s\". Error=%s",
                     submissionFolder.c_str(), result.Text());
    }
}

ResultCode Packager::Package(const std::string& submissionFolder, std::string& name) const {
    DiscardWork(FolderPath::LastComponent(submissionFolder).value_or("")); // of a run that was cut short
    ResultCode result = ExceptionToResult(
        [&] { return SubmissionPackager(m_config, m_blacklist).Prepare(submissionFolder, name); });
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to package dump folder \"%s\", error: \"%s\"",
                     submissionFolder.c_str(), result.Text());
        return result;
    }
    result = ExceptionToResult([&] { return PackageWriter(m_config, m_sharesFolder).Generate(name); });
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to generate package file for submission \"%s\", error: \"%s\"", name.c_str(),
                     result.Text());
    }
    return result;
}

// What can't be removed is logged there and replaced when the submission comes again.
void Packager::DiscardWork(const std::string& name) const {
    if (name.empty() || m_sharesFolder) {
        return;
    }
    const std::string workFolder = FolderPath::Join(m_config.packageWorkFolder, name);
    if (PlatformHelpers::PathExists(workFolder)) {
        static_cast<void>(PlatformHelpers::RemoveFolder(workFolder));
    }
}
