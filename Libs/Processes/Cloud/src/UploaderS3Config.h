#pragma once

#include <cstdint>
#include <string>

#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The configuration section of one S3 uploader. The configuration file is the only place of the credentials.
struct UploaderS3Config {
    uint32_t timeBetweenChecks = 250;    // ms
    uint32_t timeBetweenRetries = 30000; // ms; recorded with each upload and used by none
    std::string watcherName;             // the process that finds the packages
    std::string submissionFilename;      // empty: "submission.pkg"
    std::string bucketName;
    std::string accessKey;
    std::string secretKey;
    bool askPermission = false;
    std::string endpointOverride; // scheme, host and port of an S3-compatible store; empty: Amazon's
    std::string region = "us-east-1";
    bool useVirtualAddressing = true; // false: the bucket in the path, for stores without wildcard names

    // Where and as whom a client sends. Timeouts are the caller's.
    ObjectStoreConfig GetStore() const;
};
Reflection_DeclareType(UploaderS3Config);
