#include "Libs/Processes/Core/src/UploaderBase.h"

#include <utility>

#include "Libs/Processes/Core/src/UploadDecisions.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ThreadId.h"

Reflection_DefinePolymorphicType(UploaderBase);

void UploaderBase::SetAskPermission(bool ask) {
    PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
    m_askPermission = ask;
    m_permission = ask ? UploadPermission::NotAsked : UploadPermission::Allowed;
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

void UploaderBase::Collect(IWatcher& watcher) {
    AssertOnUploaderThread();
    std::vector<TaskData> found;
    (void)watcher.TakeTasks(found); // what it handed over before it failed won't be offered again
    if (UploadDecisions::ShouldAskPermission(m_askPermission, m_pendingFolders.empty(), !found.empty(),
                                             m_permission)) {
        AskPermission();
    }
    for (const TaskData& task : found) {
        m_pendingFolders.push_back(task.GetInstanceHash());
    }
}

void UploaderBase::AskPermission() {
    UploadPermission answer = UploadPermission::Refused;
    ApplicationBase* const application = GetApplication();
    const ResultCode asked =
        application ? application->AskUploadPermission(answer) : ResultCode("No application to ask");
    if (!asked) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to get user's permission to upload crash report. Error=%s",
                     asked.Text());
    }
    m_permission = UploadDecisions::PermissionAfterAsking(asked, answer);
}

void UploaderBase::StartUploads() {
    AssertOnUploaderThread();
    ReapUploads();
    while (UploadDecisions::MayStartUpload(IsStopRequested(), m_pendingFolders.size(), m_activeUploads.size(),
                                           m_maxActiveUploads)) {
        std::string folder;
        const ResultCode result = UploadDecisions::TakeNextFolder(m_pendingFolders, folder);
        if (!result) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to get next pending folder. Error=%s", result.Text());
            continue;
        }
        PLATFORM_LOG(Platform::InfoLog, " Starting upload thread for submission in folder %s",
                     folder.c_str());
        StartUploadThread(folder, m_permission);
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
        upload.reset(); // returns after the upload's thread has ended
    }
    m_activeUploads.clear();
}

void UploaderBase::AssertOnUploaderThread() {
    PLATFORM_ASSERT(GetThread());
    PLATFORM_ASSERT_TEXT(!GetThread() || GetThread()->GetThreadId() == GetCurrentThreadIdImpl(),
                         "GetThread()->GetThreadId() == GetCurrentThreadIdImpl()");
}
