#include "Libs/Processes/Cloud/src/UploaderS3.h"

#include <memory>

#include "Libs/Processes/Cloud/src/CloudComponent.h"
#include "Libs/Processes/Cloud/src/UploaderThreadS3.h"
#include "Libs/Shared/src/JsonConfig.h"

Reflection_DefinePolymorphicType(UploaderS3);

ResultCode UploaderS3::Initialize(const JsonDocument& config, int, const char**) {
    if (!HasCloudComponent()) {
        return "UploaderS3 requires CloudComponent for initialization";
    }
    // A misspelt AskPermission must never send.
    RETURN_IF_FAILED(ReadConfigSection(config, GetName(), m_config, UnknownKeys::Refused));
    return InitializeFrom(m_config);
}

void UploaderS3::StartUploadThread(const std::string& folder, UploadPermission permission) {
    AddAndStart(std::make_shared<UploaderThreadS3>(permission, folder, m_config));
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
