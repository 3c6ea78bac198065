#include "Libs/Processes/Core/src/UploaderBase.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
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
    config.submissionFilename = PackageName(config.submissionFilename);
    m_watcherProcPtr = FindProcess(config.watcherName);
    if (!m_watcherProcPtr) {
        return StartFailure::NoPackageWatcher;
    }
    if (!config.receiptFile.empty()) {
        const bool isInside = IsSafeAttachmentName(config.receiptFile);
        if (!isInside) { // no reason to send nothing
            PLATFORM_LOG(Platform::ErrorLog,
                         " ReceiptFile \"%s\" is not inside the application folder: no receipts are written",
                         config.receiptFile.c_str());
        }
        config.receiptFile = isInside ? FolderPath::Join(GetApplicationFolder(), config.receiptFile) : "";
    }
    SetAskPermission(config.askPermission);
    m_retryFailedUploads = config.retryFailedUploads;
    m_random.seed(static_cast<uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count()));
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
    if (m_askPermission && m_permission == UploadPermission::NotAsked && m_packages.empty() &&
        !m_found.empty()) {
        m_permission = AskPermission();
    }
    std::vector<UploadRetries::Package> found;
    found.reserve(m_found.size());
    for (const TaskData& task : m_found) {
        found.push_back({task.GetInstanceHash()});
    }
    m_packages.reserve(m_packages.size() + found.size());
    std::ranges::move(found, std::back_inserter(m_packages));
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
    while (!IsStopRequested() && m_activeUploads.size() < m_maxActiveUploads) {
        UploadRetries::Package* const next =
            UploadRetries::LatestDue(m_packages, std::chrono::steady_clock::now());
        if (!next) {
            return;
        }
        if (next->attempts > 0 && !PlatformHelpers::PathExists(next->folder)) {
            Drop(*next); // the quota has taken it meanwhile
            continue;
        }
        PLATFORM_LOG(Platform::InfoLog, " Starting upload thread for submission in folder %s",
                     next->folder.c_str());
        StartUploadThread(next->folder, m_permission);
        next->isActive = true; // after it was started: until then an exception keeps it pending
    }
}

void UploaderBase::ReapUploads() {
    std::erase_if(m_activeUploads, [this](const auto& upload) {
        if (upload && upload->IsRunning()) {
            return false;
        }
        UploadRetries::Package* const package =
            upload ? UploadRetries::FindActive(m_packages, upload->GetFolder()) : nullptr;
        if (package && !IsTriedAgain(*package, *upload)) {
            Drop(*package);
        }
        return true;
    });
}

bool UploaderBase::IsTriedAgain(UploadRetries::Package& package, const UploaderThreadBase& upload) {
    const UploadAnswer* const failure = upload.GetFailure();
    if (!failure || !m_retryFailedUploads) {
        return false;
    }
    const auto pause = UploadRetries::CountFailure(
        package, *failure, {upload.GetTimeBetweenRetries(), UploaderThreadBase::MaxAttempts}, m_random());
    if (!pause) {
        PLATFORM_LOG(Platform::InfoLog, " Leaving package in folder %s for the next run after %u attempts",
                     package.folder.c_str(), static_cast<unsigned>(package.attempts));
        return false;
    }
    PLATFORM_LOG(Platform::InfoLog, " Trying package in folder %s again in %0.1f seconds",
                 package.folder.c_str(), std::chrono::duration<double>(*pause).count());
    package.isActive = false;
    package.due = std::chrono::steady_clock::now() + *pause;
    return true;
}

void UploaderBase::Drop(const UploadRetries::Package& package) {
    m_packages.erase(m_packages.begin() + (&package - m_packages.data()));
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
