#include "Libs/Processes/Core/src/UploaderBase.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

Reflection_DefinePolymorphicType(UploaderBase);

void UploaderBase::SetAskPermission(bool ask) {
    PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
    m_askPermission = ask;
    m_permission = ask ? UploadPermission::NotAsked : UploadPermission::Allowed;
}

ResultCode UploaderBase::InitializeFrom(UploaderConfig& config) {
    if (config.submissionFilename.empty()) {
        config.submissionFilename = DefaultName::Package;
    }
    const ApplicationBase* const application = GetApplication();
    m_watcherProcPtr = application ? application->GetProcess(config.watcherName) : nullptr;
    if (!m_watcherProcPtr) {
        return "No watcher process to provide submissions for uploader";
    }
    SetAskPermission(config.askPermission);
    PLATFORM_LOG(
        Platform::InfoLog,
        " Uploader \"%s\" is uploading submissions with a file name of \"%s\" as gathered by watcher "
        "\"%s\"",
        GetName(), config.submissionFilename.c_str(), config.watcherName.c_str());
    return Platform::Success;
}

void UploaderBase::AddAndStart(const std::shared_ptr<UploaderThreadBase>& upload) {
    AddActiveUpload(upload);
    if (const ResultCode result = upload->Start(); !result) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to start upload thread for submission in folder %s. Error=%s",
                     upload->GetFolder().c_str(), result.Text()); // the folder stays for a later run
    }
}

void UploaderBase::AddActiveUpload(std::shared_ptr<UploaderThreadBase> upload) {
    AssertOnUploaderThread();
    m_activeUploads.push_back(std::move(upload));
}

bool UploaderBase::ThreadMain() {
    PLATFORM_ASSERT(m_watcherProcPtr);
    IWatcher* pWatcher = m_watcherProcPtr ? Reflection::Query<IWatcher>(*m_watcherProcPtr) : nullptr;
    PLATFORM_ASSERT(pWatcher);
    if (!pWatcher) {
        return IsStopRequested();
    }
    RunRounds(GetTimeBetweenChecks(), [&] {
        Collect(*pWatcher);
        StartUploads();
    });
    WaitForUploads();
    return IsStopRequested();
}

// A folder that was taken is not offered again. So what a round took stays in m_found if the round fails
// before it is pending.
void UploaderBase::Collect(IWatcher& watcher) {
    AssertOnUploaderThread();
    if (m_found.empty()) {
        static_cast<void>(watcher.TakeTasks(m_found)); // whatever came before a failure counts
    }
    if (m_askPermission && m_permission == UploadPermission::NotAsked && m_pendingFolders.empty() &&
        !m_found.empty()) {
        m_permission = AskPermission();
    }
    m_pendingFolders.reserve(m_pendingFolders.size() + m_found.size());
    std::ranges::move(m_found, std::back_inserter(m_pendingFolders));
    m_found.clear();
}

// Nothing but Yes allows: a question that failed refuses, whatever the answer says.
UploadPermission UploaderBase::AskPermission() {
    UploadPermission answer = UploadPermission::Refused;
    ApplicationBase* const application = GetApplication();
    PLATFORM_LOG(Platform::InfoLog, " Asking the player whether crash reports may be sent");
    const ResultCode asked =
        application ? application->AskUploadPermission(answer) : ResultCode("No application to ask");
    if (!asked) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to get user's permission to upload crash report. Error=%s",
                     asked.Text());
        return UploadPermission::Refused;
    }
    const bool isAllowed = answer == UploadPermission::Allowed;
    PLATFORM_LOG(Platform::InfoLog, " The player %s",
                 !isAllowed          ? "refused: the crash reports of this run are deleted unsent"
                 : IsStopRequested() ? "agreed too late: the crash reports stay for the next run"
                                     : "agreed: crash reports are sent");
    return isAllowed ? answer : UploadPermission::Refused;
}

void UploaderBase::StartUploads() {
    AssertOnUploaderThread();
    ReapUploads();
    while (!IsStopRequested() && !m_pendingFolders.empty() && m_activeUploads.size() < m_maxActiveUploads) {
        const std::string& folder = m_pendingFolders.back().GetInstanceHash();
        PLATFORM_LOG(Platform::InfoLog, " Starting upload thread for submission in folder %s",
                     folder.c_str());
        StartUploadThread(folder, m_permission);
        m_pendingFolders.pop_back(); // after it was started: until then an exception keeps it pending
    }
}

void UploaderBase::ReapUploads() {
    std::erase_if(m_activeUploads, [](const auto& upload) { return !upload || !upload->IsRunning(); });
}

void UploaderBase::WaitForUploads() {
    AssertOnUploaderThread();
    if (m_activeUploads.empty()) {
        return;
    }
    PLATFORM_LOG(Platform::InfoLog, " Waiting for %d active uploads to complete",
                 static_cast<int>(m_activeUploads.size()));
    for (auto& upload : m_activeUploads) {
        upload.reset(); // waits for the upload's thread
    }
    m_activeUploads.clear();
}

void UploaderBase::AssertOnUploaderThread() {
    PLATFORM_ASSERT(GetThread());
    PLATFORM_ASSERT_TEXT(!GetThread() || GetThread()->GetThreadId() == GetCurrentThreadIdImpl(),
                         "GetThread()->GetThreadId() == GetCurrentThreadIdImpl()");
}
