#pragma once

#include <string>
#include <utility>

#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/SigV4Signer.h"

// The client of builds without the AWS SDK: signed requests over the system's own HTTP, hashing and
// certificates. Sends nothing before PutObject; keeps no connection after it. Writes neither secrets nor
// answers to any log.
class WinHttpObjectStore : public IObjectStore {
public:
    explicit WinHttpObjectStore(ObjectStoreConfig config) : m_config(std::move(config)) {}

    ResultCode PutObject(const PutObjectRequest& request, std::string& eTag) override;

private:
    ResultCode TryPutObject(const PutObjectRequest& request, std::string& eTag) const;

    const ObjectStoreConfig m_config;
};

// The signed request for an object as the store is to see it; the timestamp as in SigV4::Scope. Over http the
// body's hash is signed; over https the transport protects the body, and hashing it a second time is saved.
ResultCode MakeSignedPut(const PutObjectRequest& request, const ObjectStoreConfig& config,
                         const S3Endpoint& endpoint, const std::string& timestamp, SigV4::Request& signedPut);
