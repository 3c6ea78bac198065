#include "Libs/Processes/Cloud/src/UploaderS3Config.h"

Reflection_DefineType(
    UploaderS3Config,
    Reflection_Field(timeBetweenChecks, "TimeBetweenChecks", Reflection::OptionalAttribute()),
    Reflection_Field(timeBetweenRetries, "TimeBetweenRetries", Reflection::OptionalAttribute()),
    Reflection_Field(watcherName, "WatcherName"),
    Reflection_Field(submissionFilename, "SubmissionFilename", Reflection::OptionalAttribute()),
    Reflection_Field(bucketName, "BucketName"), Reflection_Field(accessKey, "AccessKey"),
    Reflection_Field(secretKey, "SecretKey"),
    Reflection_Field(askPermission, "AskPermission", Reflection::OptionalAttribute()),
    Reflection_Field(endpointOverride, "EndpointOverride", Reflection::OptionalAttribute()),
    Reflection_Field(region, "Region", Reflection::OptionalAttribute()),
    Reflection_Field(useVirtualAddressing, "UseVirtualAddressing", Reflection::OptionalAttribute()));

ObjectStoreConfig UploaderS3Config::GetStore() const {
    ObjectStoreConfig store;
    store.endpointOverride = endpointOverride;
    store.region = region;
    store.useVirtualAddressing = useVirtualAddressing;
    store.bucket = bucketName;
    store.accessKey = accessKey;
    store.secretKey = secretKey;
    return store;
}
