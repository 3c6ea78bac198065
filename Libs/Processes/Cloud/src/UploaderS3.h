#pragma once

#include <cstdint>
#include <string>

#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Processes/Core/src/UploaderBase.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// Uploads what its watcher finds to an Amazon S3 bucket, or to a store with the same protocol. Needs a
// CloudComponent among the application's components. Owned and initialised as every process is.
class UploaderS3 : public Reflected<UploaderS3, UploaderBase> {
public:
    using Reflected::Reflected;

    // Fails without the component, the section, one of its required keys or the watcher process.
    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    void StartUploadThread(const std::string& folder, UploadPermission permission) override;
    uint32_t GetTimeBetweenChecks() const override { return m_config.timeBetweenChecks; }

private:
    bool HasCloudComponent() const;

    UploaderS3Config m_config; // constant after Initialize
};
Reflection_DeclarePolymorphicType(UploaderS3);
