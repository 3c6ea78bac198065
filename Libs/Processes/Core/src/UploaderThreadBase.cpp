#include "Libs/Processes/Core/src/UploaderThreadBase.h"

#include <chrono>
#include <utility>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

// Fails while somebody still holds the file open for writing, and for one that does not fit in memory.
ResultCode LoadPackage(const std::string& path, std::vector<uint8_t>& package) {
    switch (Platform::ReadWholeFile(path, package, Platform::ReadSharing::DenyWriters)) {
    case Platform::ReadOutcome::Done:
        return Platform::Success;
    case Platform::ReadOutcome::OpenFailed:
        return "Failed to open package file";
    case Platform::ReadOutcome::Empty:
        return "Failed to read package file of invalid size";
    case Platform::ReadOutcome::ReadFailed:
        break;
    }
    return "Failed to read package file";
}

} // namespace

UploaderThreadBase::UploaderThreadBase(UploadPermission permission, std::string folder,
                                       std::string submissionFileName, uint32_t timeBetweenRetriesMs)
    : m_permission(permission), m_folder(std::move(folder)),
      m_submissionFileName(std::move(submissionFileName)), m_timeBetweenRetriesMs(timeBetweenRetriesMs),
      m_threadName("Uploading: " + m_folder), m_thread(std::make_shared<Thread>([this] { ThreadMain(); })) {
    static_cast<void>(m_thread->SetName(m_threadName.c_str())); // it serves debuggers only
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
    const ResultCode result = ExceptionToResult([this]() -> ResultCode {
        if (m_permission == UploadPermission::Refused) {
            DeleteFolder();
            return Platform::Success;
        }
        return UploadFolder();
    });
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to upload package in folder %s. Error=%s", m_folder.c_str(),
                     result.Text());
    }
}

ResultCode UploaderThreadBase::UploadFolder() {
    std::vector<uint8_t> package;
    const char* const separator = m_folder.ends_with('\\') ? "" : "\\";
    const ResultCode loaded = LoadPackage(m_folder + separator + m_submissionFileName, package);
    if (!loaded) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to load package in \"%s\" for upload . Error=%s",
                     m_folder.c_str(), loaded.Text());
        return Platform::Success; // said in its own words
    }
    const auto start = std::chrono::steady_clock::now();
    const ResultCode uploaded = UploadPackage(package);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    RETURN_IF_FAILED(uploaded);
    PLATFORM_LOG(Platform::InfoLog, " Uploaded package for submission folder \"%s\" in %0.3f seconds",
                 m_folder.c_str(), elapsed.count());
    DeleteFolder();
    return Platform::Success;
}

void UploaderThreadBase::DeleteFolder() const {
    const ResultCode result = PlatformHelpers::RemoveFolder(m_folder);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to delete submission folder \"%s\". Error=%s",
                     m_folder.c_str(), result.Text());
    }
}
