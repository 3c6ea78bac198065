#include "Libs/Processes/Cloud/src/WinHttpObjectStore.h"

#include <algorithm>
#include <cstdio>
#include <new>

#include <windows.h>

#include "Libs/Processes/Cloud/src/Sha256.h"
#include "Libs/Processes/Cloud/src/WinHttpExchange.h"

namespace {

std::string CurrentTimestamp() {
    SYSTEMTIME utc;
    GetSystemTime(&utc);
    char text[sizeof("20130524T000000Z") + 32];
    std::snprintf(text, sizeof(text), "%04u%02u%02uT%02u%02u%02uZ", unsigned{utc.wYear}, unsigned{utc.wMonth},
                  unsigned{utc.wDay}, unsigned{utc.wHour}, unsigned{utc.wMinute}, unsigned{utc.wSecond});
    return text;
}

// Nothing that could end a header's line, and nothing that the wire and the signature could see differently.
bool IsHeaderValue(const std::string& value) {
    return !value.empty() &&
           std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

ResultCode CheckRequest(const PutObjectRequest& request) {
    if (request.key.empty()) {
        return "Object key is empty";
    }
    if (request.contentLength < 0 || static_cast<uint64_t>(request.contentLength) != request.body.size()) {
        return "Announced length is not the length of the body";
    }
    if (!IsHeaderValue(request.contentMd5) || !IsHeaderValue(request.contentType)) {
        return "Content header is missing or not printable";
    }
    return Platform::Success;
}

} // namespace

ResultCode MakeSignedPut(const PutObjectRequest& request, const ObjectStoreConfig& config,
                         const S3Endpoint& endpoint, const std::string& timestamp,
                         SigV4::Request& signedPut) {
    signedPut.method = "PUT";
    signedPut.path = SigV4::EncodePath(endpoint.bucketPath + request.key);
    signedPut.payloadHash = SigV4::UnsignedPayload;
    if (!endpoint.secure) {
        const auto hash = Sha256::HashOf(request.body);
        if (!hash) {
            return "Failed to hash the body";
        }
        signedPut.payloadHash = Sha256::ToHex(*hash);
    }
    signedPut.headers = {{"Host", endpoint.HostHeader()},
                         {"Content-Length", std::to_string(request.contentLength)},
                         {"Content-MD5", request.contentMd5},
                         {"Content-Type", request.contentType},
                         {"x-amz-content-sha256", signedPut.payloadHash},
                         {"x-amz-date", timestamp}};
    const auto authorization =
        SigV4::Authorization(signedPut, {config.accessKey, config.secretKey}, {timestamp, config.region});
    if (!authorization) {
        return "Failed to sign the request";
    }
    signedPut.headers.push_back({"Authorization", *authorization});
    return Platform::Success;
}

ResultCode WinHttpObjectStore::TryPutObject(const PutObjectRequest& request, std::string& eTag) const {
    if (const ResultCode result = CheckRequest(request); !result) {
        return result;
    }
    S3Endpoint endpoint;
    if (const ResultCode result = ResolveS3Endpoint(m_config, endpoint); !result) {
        return result;
    }
    SigV4::Request put;
    if (const ResultCode result = MakeSignedPut(request, m_config, endpoint, CurrentTimestamp(), put);
        !result) {
        return result;
    }
    WinHttpExchange exchange(m_config.connectTimeoutMs, m_config.requestTimeoutMs);
    if (const ResultCode result = exchange.Open(endpoint, put.path); !result) {
        return result;
    }
    if (const ResultCode result = exchange.Send(put.headers, request.body); !result) {
        return result;
    }
    uint32_t status = 0;
    if (const ResultCode result = exchange.Receive(status, eTag); !result) {
        return result;
    }
    if (status < 200 || status > 299) {
        return "Store refused the object";
    }
    return Platform::Success;
}

ResultCode WinHttpObjectStore::PutObject(const PutObjectRequest& request, std::string& eTag) {
    eTag.clear();
    try {
        const ResultCode result = TryPutObject(request, eTag);
        if (!result) {
            eTag.clear();
        }
        return result;
    } catch (const std::bad_alloc&) {
        return "Not enough memory for the upload";
    }
}

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
