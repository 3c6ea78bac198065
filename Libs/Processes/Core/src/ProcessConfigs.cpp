#include "Libs/Processes/Core/src/ProcessConfigs.h"

Reflection_DefineType(
    WatcherConfig, Reflection_Field(timeBetweenChecks, "TimeBetweenChecks", Reflection::OptionalAttribute()),
    Reflection_Field(folder, "Folder"),
    Reflection_Field(sentinelFile, "SentinelFile", Reflection::OptionalAttribute()),
    Reflection_Field(metricsCollectorName, "MetricsCollectorName", Reflection::OptionalAttribute()),
    Reflection_Field(maxFolderScans, "MaxFolderScans", Reflection::OptionalAttribute()),
    Reflection_Field(ignoreReadOnlyFolders, "IgnoreReadOnlyFolders", Reflection::OptionalAttribute()),
    Reflection_Field(shutdownAfterCheck, "ShutdownAfterCheck", Reflection::OptionalAttribute()));

Reflection_DefineType(
    PackagerConfig, Reflection_Field(timeBetweenChecks, "TimeBetweenChecks", Reflection::OptionalAttribute()),
    Reflection_Field(attachmentLimits, "AttachmentLimits", Reflection::OptionalAttribute()),
    Reflection_Field(attachmentBlacklist, "AttachmentBlacklist", Reflection::OptionalAttribute()),
    Reflection_Field(watcherName, "WatcherName"),
    Reflection_Field(packagedFolder, "PackagedFolder", Reflection::OptionalAttribute()),
    Reflection_Field(packageWorkFolder, "PackageWorkFolder", Reflection::OptionalAttribute()),
    Reflection_Field(submissionFilename, "SubmissionFilename", Reflection::OptionalAttribute()),
    Reflection_Field(source, "Source", Reflection::OptionalAttribute()),
    Reflection_Field(keepFailedSubmissions, "KeepFailedSubmissions", Reflection::OptionalAttribute()));

Reflection_DefineType(DiskQuotaConfig,
                      Reflection_Field(invalidGraceTime, "InvalidGraceTime", Reflection::OptionalAttribute()),
                      Reflection_Field(timeBetweenChecks, "TimeBetweenChecks",
                                       Reflection::OptionalAttribute()),
                      Reflection_Field(dumpsFolder, "DumpsFolder", Reflection::OptionalAttribute()),
                      Reflection_Field(dumpsQuota, "DumpsQuota", Reflection::OptionalAttribute()),
                      Reflection_Field(packagedFolder, "PackagedFolder", Reflection::OptionalAttribute()),
                      Reflection_Field(packagedQuota, "PackagedQuota", Reflection::OptionalAttribute()));

Reflection_DefineType(ProcessMonitorConfig,
                      Reflection_Field(timeBetweenChecks, "TimeBetweenChecks",
                                       Reflection::OptionalAttribute()),
                      Reflection_Field(shutdownDelay, "ShutdownDelay", Reflection::OptionalAttribute()),
                      Reflection_Field(watchedApplications, "WatchedApplications"));

Reflection_DefineType(
    UploaderConfig, Reflection_Field(timeBetweenChecks, "TimeBetweenChecks", Reflection::OptionalAttribute()),
    Reflection_Field(timeBetweenRetries, "TimeBetweenRetries", Reflection::OptionalAttribute()),
    Reflection_Field(watcherName, "WatcherName"),
    Reflection_Field(submissionFilename, "SubmissionFilename", Reflection::OptionalAttribute()),
    Reflection_Field(askPermission, "AskPermission", Reflection::OptionalAttribute()),
    Reflection_Field(verifyETag, "VerifyETag", Reflection::OptionalAttribute()),
    Reflection_Field(retryFailedUploads, "RetryFailedUploads", Reflection::OptionalAttribute()),
    Reflection_Field(receiptFile, "ReceiptFile", Reflection::OptionalAttribute()));

Reflection_DefineType(UploaderS3Config, Reflection_Base(UploaderConfig),
                      Reflection_Field(bucketName, "BucketName"), Reflection_Field(accessKey, "AccessKey"),
                      Reflection_Field(secretKey, "SecretKey"),
                      Reflection_Field(endpointOverride, "EndpointOverride", Reflection::OptionalAttribute()),
                      Reflection_Field(region, "Region", Reflection::OptionalAttribute()),
                      Reflection_Field(useVirtualAddressing, "UseVirtualAddressing",
                                       Reflection::OptionalAttribute()));

Reflection_DefineType(UploaderPresignedConfig, Reflection_Base(UploaderConfig),
                      Reflection_Field(signerUrl, "SignerUrl"),
                      Reflection_Field(signerHeaders, "SignerHeaders", Reflection::OptionalAttribute()));
