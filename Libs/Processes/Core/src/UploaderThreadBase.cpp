#include "Libs/Processes/Core/src/UploaderThreadBase.h"

#include <chrono>
#include <utility>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/UploadReceipts.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

UploaderThreadBase::UploaderThreadBase(UploadPermission permission, std::string folder,
                                       const UploaderConfig& config)
    : m_permission(permission), m_folder(std::move(folder)), m_submissionFileName(config.submissionFilename),
      m_receiptFile(config.receiptFile), m_timeBetweenRetriesMs(config.timeBetweenRetries),
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
            m_hasFailed = false;
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
    const auto notLoaded = [this](const char* reason) { // said in its own words
        PLATFORM_LOG(Platform::ErrorLog, " Failed to load package in \"%s\" for upload . Error=%s",
                     m_folder.c_str(), reason);
        return Platform::Success;
    };
    {
        Platform::File file;
        // Nobody writes to it or shortens it meanwhile; the quota may delete it.
        if (file.Open(FolderPath::Join(m_folder, m_submissionFileName), Platform::FileRead,
                      Platform::ShareRead | Platform::ShareDelete,
                      Platform::Patience::WhileHeld) != Platform::NoError) {
            return notLoaded("Failed to open package file");
        }
        Platform::FileSource package(std::move(file)); // closed before its folder is deleted
        if (package.GetSize() == 0) {
            return notLoaded("Failed to read package file of invalid size");
        }
        const auto start = std::chrono::steady_clock::now();
        const ResultCode uploaded = UploadPackage(package, m_answer);
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        if (package.HasFailed()) {
            return notLoaded("Failed to read package file");
        }
        RETURN_IF_FAILED(uploaded);
        PLATFORM_LOG(Platform::InfoLog, " Uploaded package for submission folder \"%s\" in %0.3f seconds",
                     m_folder.c_str(), elapsed.count());
        m_hasFailed = false;
        WriteReceipt(package.GetSize(), elapsed.count());
    }
    DeleteFolder();
    return Platform::Success;
}

// Whatever happens here, the package has arrived.
void UploaderThreadBase::WriteReceipt(uint64_t size, double seconds) const {
    if (m_receiptFile.empty()) {
        return;
    }
    const ResultCode result = ExceptionToResult([&] {
        return UploadReceipts::Add(m_receiptFile, {"", FolderPath::LastComponent(m_folder).value_or(""),
                                                   m_answer.key, size, seconds});
    });
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to write a receipt into \"%s\". Error=%s",
                     m_receiptFile.c_str(), result.Text());
    }
}

void UploaderThreadBase::DeleteFolder() const {
    const ResultCode result = PlatformHelpers::RemoveFolder(m_folder);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to delete submission folder \"%s\". Error=%s",
                     m_folder.c_str(), result.Text());
    }
}
