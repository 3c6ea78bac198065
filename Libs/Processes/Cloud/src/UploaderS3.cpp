#include "Libs/Processes/Cloud/src/UploaderS3.h"

#include <memory>

#include "Libs/Processes/Cloud/src/CloudComponent.h"
#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/S3Upload.h"
#include "Libs/Shared/src/JsonConfig.h"

Reflection_DefinePolymorphicType(UploaderS3);

namespace {

// One upload of one package to an S3 bucket, with its own client. See UploaderThreadBase for its life.
class UploaderThreadS3 final : public UploaderThreadBase {
public:
    UploaderThreadS3(UploadPermission permission, const std::string& folder, const UploaderS3Config& config)
        : UploaderThreadBase(permission, folder, config), m_verifyETag(config.verifyETag),
          m_store(StoreOf(config)) {}
    ~UploaderThreadS3() override { WaitForEnd(); }

    ResultCode UploadPackage(Platform::ByteSource& package, UploadAnswer& answer) override {
        return PutPackage(*CreateObjectStore(m_store), package, m_verifyETag, answer);
    }

private:
    const bool m_verifyETag;
    const ObjectStoreConfig m_store;
};

} // namespace

ResultCode UploaderS3::Initialize(const JsonDocument& config, int, const char**) {
    if (!HasCloudComponent()) {
        return StartFailure::NoCloudComponent;
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
