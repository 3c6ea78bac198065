#include "Libs/Processes/Core/src/Packager.h"

#include <utility>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/IWatcher.h"
#include "Libs/Processes/Core/src/LeftOvers.h"
#include "Libs/Processes/Core/src/PackageWriter.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "Libs/Processes/Core/src/SubmissionPackager.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

Reflection_DefinePolymorphicType(Packager);

namespace {

bool IsSameFolder(const std::string& left, const std::string& right) {
    Platform::FileIdentity leftIdentity;
    Platform::FileIdentity rightIdentity;
    return Platform::QueryIdentity(left, leftIdentity) == Platform::NoError &&
           Platform::QueryIdentity(right, rightIdentity) == Platform::NoError &&
           leftIdentity == rightIdentity;
}

} // namespace

ResultCode Packager::Initialize(const JsonDocument& config, int, const char**) {
    RETURN_IF_FAILED(ReadConfigSection(config, GetName(), m_config));
    RETURN_IF_FAILED(PrepareFolders());
    m_config.submissionFilename = PackageName(m_config.submissionFilename);
    RETURN_IF_FAILED(CompileBlacklist());
    m_watcherProcPtr = FindProcess(m_config.watcherName);
    if (!m_watcherProcPtr) {
        return StartFailure::NoSubmissionWatcher;
    }
    PLATFORM_LOG(
        Platform::InfoLog,
        " Packager \"%s\" is packaging submissions with a file name of \"%s\" in folder \"%s\" for items "
        "gathered by watcher \"%s\"",
        GetName(), m_config.submissionFilename.c_str(), m_config.packagedFolder.c_str(),
        m_config.watcherName.c_str());
    return Platform::Success;
}

// The watcher is initialised now, whichever of the two came first.
ResultCode Packager::PostInitialize() {
    if (const auto* watcher = Reflection::Query<IFileStoreWatcher>(*m_watcherProcPtr)) {
        watcher->GetFolder(m_dumpsFolder);
        watcher->GetSentinelFileName(m_sentinelFile);
    }
    return CheckPackagerFolders(m_config.packagedFolder, m_config.packageWorkFolder, m_dumpsFolder,
                                &IsSameFolder);
}

ResultCode Packager::PrepareFolders() {
    if (!PrepareFolder(m_config.packagedFolder, DefaultName::PackagedDumps, "").Succeeded()) {
        return "Failed to create packaged dumps folder";
    }
    if (!PrepareFolder(m_config.packageWorkFolder, DefaultName::PackageTemp, " work").Succeeded()) {
        return "Failed to create package work folder";
    }
    // The same folder can be written in two ways, and then nothing in it may be deleted as work.
    m_sharesFolder = m_config.packageWorkFolder == m_config.packagedFolder ||
                     IsSameFolder(m_config.packageWorkFolder, m_config.packagedFolder);
    return Platform::Success;
}

ResultCode Packager::PrepareFolder(std::string& folder, const char* defaultName, const char* kind) const {
    if (folder.empty()) {
        folder = FolderPath::Join(GetApplicationFolder(), defaultName);
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
    if (!pWatcher || IsStopRequested()) { // a copy that ends at once deletes nothing of the other's
        return IsStopRequested();
    }
    // Before the first pause, and so before anything is sent.
    const ResultCode cleaned = ExceptionToResult([this] {
        LeftOvers::Remove(m_config, m_dumpsFolder, m_sentinelFile);
        return Platform::Success;
    });
    if (!cleaned) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to delete what a killed run left. Error=%s",
                     cleaned.Text());
    }
    return RunRounds(m_config.timeBetweenChecks, [&] {
        std::vector<TaskData> tasks;
        if (pWatcher->TakeTasks(tasks)) {
            ProcessAll(tasks);
        }
    });
}

// The folders of tasks that a stop leaves undone stay on disk for the next run. Only Process may throw: any
// other exception here would leave all remaining tasks to the next run.
void Packager::ProcessAll(std::vector<TaskData>& tasks) const {
    while (!tasks.empty() && !IsStopRequested()) {
        const TaskData task = std::move(tasks.back());
        tasks.pop_back();
        const std::string& folder = task.GetInstanceHash();
        const ResultCode result = ExceptionToResult([&] {
            Process(folder);
            return Platform::Success;
        });
        if (!result) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to delete submission dump folder \"%s\". Error=%s",
                         folder.c_str(), result.Text());
        }
    }
}

void Packager::Process(const std::string& submissionFolder) const {
    const std::string name = FolderPath::LastComponent(submissionFolder).value_or("");
    const std::string workFolder = FolderPath::Join(m_config.packageWorkFolder, name);
    const auto discardWork = [&] { // logs a failure; the next attempt replaces what stays
        Platform::FileInfo info;
        if (!name.empty() && !m_sharesFolder && !Platform::IsMissing(Platform::QueryInfo(workFolder, info))) {
            static_cast<void>(PlatformHelpers::RemoveFolder(workFolder));
        }
    };
    discardWork(); // of a run that was cut short
    const ResultCode result = Package(submissionFolder);
    if (!result) {
        discardWork();
        if (m_config.keepFailedSubmissions && !SubmissionFault::Is(result)) {
            return;
        }
    }
    if (const ResultCode removal = PlatformHelpers::RemoveFolder(submissionFolder); !removal) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to delete submission dump folder \"%s\". Error=%s",
                     submissionFolder.c_str(), removal.Text());
    }
}

ResultCode Packager::Package(const std::string& submissionFolder) const {
    std::string name;
    JsonProblem headerProblem;
    bool isPrepared = false;
    const ResultCode result = ExceptionToResult([&] {
        const SubmissionPackager packager(m_config, m_blacklist);
        RETURN_IF_FAILED(packager.Prepare(submissionFolder, name, headerProblem));
        isPrepared = true;
        return PackageWriter(m_config, m_sharesFolder).Generate(name);
    });
    if (!result && !isPrepared) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to package dump folder \"%s\", error: \"%s\"",
                     submissionFolder.c_str(), result.Text());
        if (!headerProblem.text.empty()) {
            PLATFORM_LOG(Platform::ErrorLog, " Header of \"%s\" is wrong at line %u, column %u: %s",
                         submissionFolder.c_str(), static_cast<unsigned>(headerProblem.position.line),
                         static_cast<unsigned>(headerProblem.position.column), headerProblem.text.c_str());
        }
    } else if (!result) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to generate package file for submission \"%s\", error: \"%s\"", name.c_str(),
                     result.Text());
    }
    return result;
}
