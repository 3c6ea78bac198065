#include "Libs/Processes/Cloud/src/UploaderPresigned.h"

#include <memory>

#include "Libs/Processes/Cloud/src/PresignedObjectStore.h"
#include "Libs/Processes/Cloud/src/S3Upload.h"
#include "Libs/Processes/Cloud/src/SignerProtocol.h"
#include "Libs/Shared/src/JsonConfig.h"

Reflection_DefinePolymorphicType(UploaderPresigned);

namespace {

// One upload of one package. See UploaderThreadBase for its life.
class UploaderThreadPresigned final : public UploaderThreadBase {
public:
    UploaderThreadPresigned(UploadPermission permission, const std::string& folder,
                            const UploaderPresignedConfig& config)
        : UploaderThreadBase(permission, folder, config), m_config(config) {}
    ~UploaderThreadPresigned() override { WaitForEnd(); }

    ResultCode UploadPackage(Platform::ByteSource& package, UploadAnswer& answer) override {
        return PutPackage(*CreatePresignedObjectStore(m_config), package, m_config.verifyETag, answer);
    }

private:
    const UploaderPresignedConfig m_config;
};

} // namespace

ResultCode UploaderPresigned::Initialize(const JsonDocument& config, int, const char**) {
    // A misspelt AskPermission must never send.
    RETURN_IF_FAILED(ReadConfigSection(config, GetName(), m_config, UnknownKeys::Refused));
    RETURN_IF_FAILED(SignerProtocol::CheckSettings(m_config));
    return InitializeFrom(m_config);
}

void UploaderPresigned::StartUploadThread(const std::string& folder, UploadPermission permission) {
    AddAndStart(std::make_shared<UploaderThreadPresigned>(permission, folder, m_config));
}
