#pragma once

#include <string>

#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Processes/Core/src/UploaderThreadBase.h"

// One upload of one package to an S3 bucket, with its own client. See UploaderThreadBase for its life.
class UploaderThreadS3 final : public UploaderThreadBase {
public:
    // Copies what it needs of the configuration.
    UploaderThreadS3(UploadPermission permission, const std::string& folder, const UploaderS3Config& config);
    ~UploaderThreadS3() override;

    ResultCode UploadPackage(Platform::ByteSource& package, UploadAnswer& answer) override;

private:
    const bool m_verifyETag;
    ObjectStoreConfig m_store; // constant after construction
};
