#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Libs/Processes/Core/src/AttachmentLimit.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The sections of the configuration file that processes read, with their defaults. A key without a default
// is required. A folder that is left empty is the one of the default name in the application's folder.

namespace DefaultName {

inline constexpr char Dumps[] = "dumps";
inline constexpr char PackagedDumps[] = "PackagedDumps";
inline constexpr char PackagedQuota[] = "packagedDumps"; // the same folder: letter case makes no difference
inline constexpr char PackageTemp[] = "PackageTemp";
inline constexpr char Package[] = "submission.pkg";

} // namespace DefaultName

// Of the package file, as configured.
inline std::string PackageName(const std::string& configured) {
    return configured.empty() ? DefaultName::Package : configured;
}

// Why a process does not start. check-config says it with the same words.
namespace StartFailure {

inline constexpr char NoSubmissionWatcher[] = "No watcher process to provide submission for packager";
inline constexpr char NoPackageWatcher[] = "No watcher process to provide submissions for uploader";
inline constexpr char NoCollector[] = "No metrics process to provide metrics collection for watcher";
inline constexpr char NoCollectorInterface[] =
    "Metrics process could not provide required MetricsAggregator interface";
inline constexpr char NoCloudComponent[] = "UploaderS3 requires CloudComponent for initialization";

} // namespace StartFailure

struct WatcherConfig {
    uint32_t timeBetweenChecks = 250; // milliseconds
    std::string folder;               // required; relative to the application's folder
    std::string sentinelFile = HeaderFile::Name;
    std::string metricsCollectorName; // a process; empty for no metrics
    int32_t maxFolderScans = -1;      // folders accepted in one scan; negative for no limit
    bool ignoreReadOnlyFolders = false;
    bool shutdownAfterCheck = false;
};
Reflection_DeclareType(WatcherConfig);

struct PackagerConfig {
    uint32_t timeBetweenChecks = 250; // milliseconds
    std::vector<AttachmentLimit> attachmentLimits;
    std::vector<std::string> attachmentBlacklist; // regular expressions
    std::string watcherName;                      // required
    std::string packagedFolder;
    std::string packageWorkFolder;
    std::string submissionFilename; // see PackageName
    BugSource source = BugSource::External;
    // True: a submission that lacked space, memory or access stays for the next run.
    bool keepFailedSubmissions = false;
};
Reflection_DeclareType(PackagerConfig);

// Refuses a packager that packs into the watched folder itself, or works in it: it would delete unsent
// packages. isSame(left, right) says whether two paths are the same folder.
template <class IsSame>
ResultCode CheckPackagerFolders(const std::string& packaged, const std::string& work,
                                const std::string& watched, IsSame isSame) {
    if (isSame(packaged, watched)) {
        return "PackagedFolder is the folder that the packager's watcher watches";
    }
    if (isSame(work, watched)) {
        return "PackageWorkFolder is the folder that the packager's watcher watches";
    }
    return Platform::Success;
}

struct DiskQuotaConfig {
    uint32_t invalidGraceTime = 3600; // seconds
    uint32_t timeBetweenChecks = 500; // milliseconds
    std::string dumpsFolder;
    uint64_t dumpsQuota = 512ULL << 20; // bytes
    std::string packagedFolder;
    uint64_t packagedQuota = 256ULL << 20; // bytes
};
Reflection_DeclareType(DiskQuotaConfig);

struct ProcessMonitorConfig {
    uint32_t timeBetweenChecks = 2500;            // milliseconds
    uint32_t shutdownDelay = 30000;               // milliseconds that all watched programs must stay gone
    std::vector<std::string> watchedApplications; // required; may be empty
};
Reflection_DeclareType(ProcessMonitorConfig);

// What the sections of all uploaders have.
struct UploaderConfig {
    uint32_t timeBetweenChecks = 250;    // ms
    uint32_t timeBetweenRetries = 30000; // ms
    std::string watcherName;             // the process that finds the packages
    std::string submissionFilename;      // see PackageName
    std::string receiptFile;             // in the application folder; empty for none
    bool askPermission = false;
    bool verifyETag = true;          // false: for a store whose ETag is no MD5
    bool retryFailedUploads = false; // true: also in this run
};
Reflection_DeclareType(UploaderConfig);

// The configuration file is the only place of the credentials.
struct UploaderS3Config : UploaderConfig {
    std::string bucketName;
    std::string accessKey;
    std::string secretKey;
    std::string endpointOverride; // scheme, host and port of an S3-compatible store; empty: Amazon's
    std::string region = "us-east-1";
    bool useVirtualAddressing = true; // false: the bucket in the path, for stores without wildcard names
};
Reflection_DeclareType(UploaderS3Config);

// Holds no secret.
struct UploaderPresignedConfig : UploaderConfig {
    std::string signerUrl; // of the studio's signer: https, or http to this machine
    std::map<std::string, std::string> signerHeaders; // sent with every question, such as a build's number
};
Reflection_DeclareType(UploaderPresignedConfig);
