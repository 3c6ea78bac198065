#include "Libs/Processes/Cloud/src/UploaderThreadS3.h"

#include <exception>
#include <memory>

#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/S3Upload.h"

UploaderThreadS3::UploaderThreadS3(UploadPermission permission, const std::string& folder,
                                   const UploaderS3Config& config)
    : UploaderThreadBase(permission, folder, config), m_verifyETag(config.verifyETag),
      m_store(StoreOf(config)) {
    m_store.connectTimeoutMs = GetConnectTimeout();
    m_store.requestTimeoutMs = GetRequestTimeout();
}

UploaderThreadS3::~UploaderThreadS3() {
    WaitForEnd();
}

ResultCode UploaderThreadS3::UploadPackage(Platform::ByteSource& package, UploadAnswer& answer) {
    try {
        return PutPackage(*CreateObjectStore(m_store), package, m_verifyETag, answer);
    } catch (const std::exception&) { // out of memory: fails this upload, not the run
        return "Failed to put stream in S3 bucket";
    }
}
