#include "Libs/Processes/Core/src/UploaderThreadBase.h"

#include <chrono>
#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/UploadPackageFile.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

UploaderThreadBase::UploaderThreadBase(UploadPermission permission, std::string folder,
                                       std::string submissionFileName, uint32_t timeBetweenRetriesMs)
    : m_permission(permission), m_folder(std::move(folder)),
      m_submissionFileName(std::move(submissionFileName)), m_timeBetweenRetriesMs(timeBetweenRetriesMs),
      m_threadName("Uploading: " + m_folder), m_thread(std::make_shared<Thread>([this] { ThreadMain(); })) {
    (void)m_thread->SetName(m_threadName.c_str()); // a debugger's help; the upload does without
}

UploaderThreadBase::~UploaderThreadBase() {
    WaitForEnd();
}

ResultCode UploaderThreadBase::Start() {
    const ResultCode result = m_thread->Resume();
    m_started = result.Succeeded();
    return result;
}

bool UploaderThreadBase::IsRunning() const {
    return m_started && m_thread->GetStatus() == Thread::Status::Running;
}

void UploaderThreadBase::WaitForEnd() const {
    if (m_started) {
        m_thread->Join();
    }
}

void UploaderThreadBase::ThreadMain() {
    if (m_permission == UploadPermission::Refused) {
        DeleteFolder();
    } else {
        UploadFolder();
    }
}

void UploaderThreadBase::UploadFolder() {
    std::vector<uint8_t> package;
    const ResultCode loaded = LoadUploadPackage(UploadPackagePath(m_folder, m_submissionFileName), package);
    if (!loaded) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to load package in \"%s\" for upload . Error=%s",
                     m_folder.c_str(), loaded.Text());
        return;
    }
    const auto start = std::chrono::steady_clock::now();
    const ResultCode uploaded = UploadPackage(package);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (!uploaded) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to upload package in folder %s. Error=%s", m_folder.c_str(),
                     uploaded.Text());
        return;
    }
    PLATFORM_LOG(Platform::InfoLog, " Uploaded package for submission folder \"%s\" in %0.3f seconds",
                 m_folder.c_str(), elapsed.count());
    DeleteFolder();
}

void UploaderThreadBase::DeleteFolder() const {
    const ResultCode result = PlatformHelpers::RemoveFolder(m_folder);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to delete submission folder \"%s\". Error=%s",
                     m_folder.c_str(), result.Text());
    }
}
