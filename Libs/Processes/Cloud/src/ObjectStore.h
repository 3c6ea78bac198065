#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Where a client sends, as whom, and how long it waits.
struct ObjectStoreConfig {
    std::string
        endpointOverride; // scheme, host and port, as "http://127.0.0.1:8080"; empty: Amazon's of the region
    std::string region = "us-east-1"; // signed with every request
    bool useVirtualAddressing = true; // the bucket in the host name; else it leads the path
    std::string bucket;
    std::string accessKey;
    std::string secretKey;
    uint32_t connectTimeoutMs = 500;
    uint32_t requestTimeoutMs = 30000; // for the answer, once everything has been sent
};

// One object to store. The caller keeps the body alive for the length of the call.
struct PutObjectRequest {
    std::string key;           // needs no escaping in a URL
    std::string contentMd5;    // base64 of the body's MD5; the store refuses a body that differs
    std::string contentType;   // media type
    int64_t contentLength = 0; // announced to the store; what the body holds is not asked
    std::span<const uint8_t> body;
};

// A client of one bucket. Lives for one upload on the upload's own thread; nothing is shared with other
// clients but the process-wide state between InitializeObjectStores and ShutdownObjectStores.
class IObjectStore {
public:
    virtual ~IObjectStore() = default;

    // One attempt without retries; blocks until the store has answered or a time-out has passed. On success
    // eTag is just what the store sent, its quotes included. A store that answers anything but success is a
    // failure.
    virtual ResultCode PutObject(const PutObjectRequest& request, std::string& eTag) = 0;
};

// Never null; what can't be set up shows as a failure of PutObject. Which implementation stands behind it is
// settled when the program is linked. Any thread.
std::unique_ptr<IObjectStore> CreateObjectStore(const ObjectStoreConfig& config);

// The bracket around every use of a client in this process. Main thread.
ResultCode InitializeObjectStores();
ResultCode ShutdownObjectStores();
