#pragma once

#include <cstdint>
#include <string>

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
