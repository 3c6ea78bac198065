#include "Libs/Processes/Cloud/src/ObjectStore.h"

#include <cstdio>
#include <utility>

#include <windows.h>

#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/S3Upload.h"
#include "Libs/Processes/Cloud/src/SigV4.h"
#include "Libs/Processes/Cloud/src/WinHttpRequest.h"

namespace {

std::string CurrentTimestamp() {
    SYSTEMTIME utc;
    GetSystemTime(&utc);
    char text[sizeof("20130524T000000Z") + 32];
    std::snprintf(text, sizeof(text), "%04u%02u%02uT%02u%02u%02uZ", unsigned{utc.wYear}, unsigned{utc.wMonth},
                  unsigned{utc.wDay}, unsigned{utc.wHour}, unsigned{utc.wMinute}, unsigned{utc.wSecond});
    return text;
}

// The client of builds without the AWS SDK: signs its requests itself.
class WinHttpObjectStore : public IObjectStore {
public:
    explicit WinHttpObjectStore(ObjectStoreConfig config) : m_config(std::move(config)) {}

    ResultCode PutObject(const PutObjectRequest& request, PutAnswer& answer) override;

private:
    ResultCode Sign(const PutObjectRequest& request, HttpRequest& put) const;

    const ObjectStoreConfig m_config;
};

ResultCode WinHttpObjectStore::PutObject(const PutObjectRequest& request, PutAnswer& answer) {
    answer = {};
    if (!std::cmp_equal(request.contentLength, request.body->GetSize())) {
        return "Announced length is not the length of the body"; // no store takes it
    }
    HttpRequest put;
    put.body = request.body;
    put.connectTimeoutMs = m_config.connectTimeoutMs;
    put.requestTimeoutMs = m_config.requestTimeoutMs;
    if (const ResultCode result = Sign(request, put); !result) {
        return LoggedStep(result, 0, {});
    }
    return PutOverHttp(put, answer);
}

// Over http the signature covers the body. Over https the transport protects it, which saves a second hash.
ResultCode WinHttpObjectStore::Sign(const PutObjectRequest& request, HttpRequest& put) const {
    S3Endpoint endpoint;
    RETURN_IF_FAILED(ResolveS3Endpoint(m_config, endpoint));
    const SigV4::Scope scope = {CurrentTimestamp(), m_config.region};
    const auto payloadHash = endpoint.address.secure ? std::optional<std::string>(SigV4::UnsignedPayload)
                                                     : SigV4::HashOf(*request.body);
    if (!payloadHash) {
        return "Failed to hash the body";
    }
    put.headers = {
        {"Host", endpoint.address.HostHeader()}, {"Content-Length", std::to_string(request.contentLength)},
        {"Content-MD5", request.contentMd5},     {"Content-Type", request.contentType},
        {"x-amz-content-sha256", *payloadHash},  {"x-amz-date", scope.timestamp}};
    put.address = endpoint.address;
    put.address.target = SigV4::EncodePath(endpoint.address.target + request.key);
    const auto authorization =
        SigV4::Authorization({put.method, put.address.target, "", put.headers, *payloadHash},
                             {m_config.accessKey, m_config.secretKey}, scope);
    if (!authorization) {
        return "Failed to sign the request";
    }
    put.headers.push_back({"Authorization", *authorization});
    return Platform::Success;
}

} // namespace

std::unique_ptr<IObjectStore> CreateObjectStore(const ObjectStoreConfig& config) {
    return std::make_unique<WinHttpObjectStore>(config);
}

// The system's HTTP needs no bracket.
ResultCode InitializeObjectStores() {
    return Platform::Success;
}
ResultCode ShutdownObjectStores() {
    return Platform::Success;
}
