#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// How long an upload waits.
inline constexpr uint32_t ConnectTimeoutMs = 500;   // for each address of the server
inline constexpr uint32_t RequestTimeoutMs = 30000; // for each piece of the body, and for the answer to it

// Where a client sends, and as whom.
struct ObjectStoreConfig {
    std::string endpointOverride;     // "http://127.0.0.1:8080"; empty: Amazon's endpoint of the region
    std::string region;               // signed with every request
    bool useVirtualAddressing = true; // the bucket leads the host name; else the path
    std::string bucket;
    std::string accessKey;
    std::string secretKey;
    uint32_t connectTimeoutMs = ConnectTimeoutMs;
    uint32_t requestTimeoutMs = RequestTimeoutMs;
};

// One object to store.
struct PutObjectRequest {
    std::string key;                      // needs no escaping in a URL
    std::string contentMd5;               // base64 of the body's MD5; the store refuses another body
    std::string contentType;              // media type
    int64_t contentLength = 0;            // as announced to the store
    Platform::ByteSource* body = nullptr; // never null in a call; read in pieces, perhaps more than once
};

// What a store has said to a PUT, also to one that it refused.
struct PutAnswer {
    std::string eTag;               // unchanged, with its quotes; empty if there was none
    uint32_t httpStatus = 0;        // 0: no answer
    uint32_t retryAfterSeconds = 0; // before which it wants no other attempt; 0: it did not say
};

// A client of one bucket. Lives for one upload, on the upload's thread. Clients share nothing but the
// process-wide state between InitializeObjectStores and ShutdownObjectStores.
class IObjectStore {
public:
    virtual ~IObjectStore() = default;

    // One attempt, which blocks until the store has answered or a timeout has passed; redirections are not
    // followed. Any answer but success is a failure. May throw std::bad_alloc.
    virtual ResultCode PutObject(const PutObjectRequest& request, PutAnswer& answer) = 0;
};

// Never null; a configuration that can't be used fails in PutObject. The build decides which implementation
// this is. Any thread. May throw std::bad_alloc.
std::unique_ptr<IObjectStore> CreateObjectStore(const ObjectStoreConfig& config);

// The bracket around every use of a client in this process. Shutdown without Initialize does nothing. Main
// thread.
ResultCode InitializeObjectStores();
ResultCode ShutdownObjectStores();
