#include "Libs/Processes/Cloud/src/UploaderS3.h"

#include <memory>
#include <utility>

#include "Libs/Processes/Cloud/src/CloudComponent.h"
#include "Libs/Processes/Cloud/src/UploaderThreadS3.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

Reflection_DefinePolymorphicType(UploaderS3);

ResultCode UploaderS3::Initialize(const JsonDocument& config, int, const char**) {
    if (!HasCloudComponent()) {
        return "UploaderS3 requires CloudComponent for initialization";
    }
    // A misspelt AskPermission must never send.
    RETURN_IF_FAILED(ReadConfigSection(config, GetName(), m_config, UnknownKeys::Refused));
    if (m_config.submissionFilename.empty()) {
        m_config.submissionFilename = DefaultName::Package;
    }
    std::shared_ptr<IApplicationProcess> watcher = GetApplication()->GetProcess(m_config.watcherName);
    if (!watcher) {
        return "No watcher process to provide submissions for uploader";
    }
    SetWatcher(std::move(watcher));
    SetAskPermission(m_config.askPermission);
    PLATFORM_LOG(
        Platform::InfoLog,
        " Uploader \"%s\" is uploading submissions with a file name of \"%s\" as gathered by watcher "
        "\"%s\"",
        GetName(), m_config.submissionFilename.c_str(), m_config.watcherName.c_str());
    return Platform::Success;
}

void UploaderS3::StartUploadThread(const std::string& folder, UploadPermission permission) {
    auto upload = std::make_shared<UploaderThreadS3>(permission, folder, m_config);
    AddActiveUpload(upload);
    if (const ResultCode result = upload->Start(); !result) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to start upload thread for submission in folder %s. Error=%s", folder.c_str(),
                     result.Text()); // the folder stays for a later run
    }
}

bool UploaderS3::HasCloudComponent() const {
    const ApplicationBase* const application = GetApplication();
    if (!application) {
        return false;
    }
    for (const auto& [name, component] : application->GetComponents()) {
        if (component && Reflection::Query<CloudComponent>(*component)) {
            return true;
        }
    }
    return false;
}
