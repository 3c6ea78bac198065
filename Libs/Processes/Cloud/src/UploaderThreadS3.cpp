#include "Libs/Processes/Cloud/src/UploaderThreadS3.h"

#include <exception>
#include <memory>

#include "Libs/Processes/Cloud/src/S3PackageUpload.h"

namespace {

ObjectStoreConfig StoreOf(const UploaderS3Config& config, const UploaderThreadBase& upload) {
    ObjectStoreConfig store;
    store.endpointOverride = config.endpointOverride;
    store.region = config.region;
    store.useVirtualAddressing = config.useVirtualAddressing;
    store.bucket = config.bucketName;
    store.accessKey = config.accessKey;
    store.secretKey = config.secretKey;
    store.connectTimeoutMs = upload.GetConnectTimeout();
    store.requestTimeoutMs = upload.GetRequestTimeout();
    return store;
}

} // namespace

UploaderThreadS3::UploaderThreadS3(UploadPermission permission, const std::string& folder,
                                   const UploaderS3Config& config)
    : UploaderThreadBase(permission, folder, config.submissionFilename, config.timeBetweenRetries),
      m_store(StoreOf(config, *this)) {}

UploaderThreadS3::~UploaderThreadS3() {
    WaitForEnd();
}

ResultCode UploaderThreadS3::UploadPackage(const std::vector<uint8_t>& package) {
    try {
        const std::unique_ptr<IObjectStore> store = CreateObjectStore(m_store);
        return PutPackage(*store, package);
    } catch (const std::exception&) { // out of memory, mostly: this package fails, not the run
        return "Failed to put stream in S3 bucket";
    }
}
