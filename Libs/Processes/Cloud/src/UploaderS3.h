#pragma once

#include <cstdint>
#include <string>

#include "Libs/Processes/Core/src/UploaderBase.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The configuration section of one S3 uploader. The credentials stand in the configuration file alone.
struct UploaderS3Config {
    uint32_t timeBetweenChecks = 250;    // ms
    uint32_t timeBetweenRetries = 30000; // ms; recorded in every upload, consulted by none
    std::string watcherName;             // instance name of the process that finds the packages
    std::string submissionFilename;      // empty: "submission.pkg"
    std::string bucketName;
    std::string accessKey;
    std::string secretKey;
    bool askPermission = false;
    std::string endpointOverride; // of an S3-compatible store: scheme, host and port; empty: Amazon's
    std::string region = "us-east-1";
    bool useVirtualAddressing = true; // false: the bucket in the path, for stores without wildcard names
};
Reflection_DeclareType(UploaderS3Config);

// Uploads what its watcher finds to an Amazon S3 bucket, or to a store that speaks the same protocol. Needs a
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
    ResultCode ReadConfig(const JsonDocument& config);
    ResultCode FindWatcher();

    UploaderS3Config m_config; // constant after Initialize
};
Reflection_DeclarePolymorphicType(UploaderS3);
