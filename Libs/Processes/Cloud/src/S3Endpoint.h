#pragma once

#include <string>

#include "Libs/Processes/Cloud/src/HttpAddress.h"
#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Where the requests for one bucket go.
struct S3Endpoint {
    HttpAddress address;       // its target comes before the key: "/" or "/bucket/"
    bool bucketInHost = false; // the bucket leads the host
};

// Where an uploader sends, and as whom.
ObjectStoreConfig StoreOf(const UploaderS3Config& config);

// Turns the configuration into an endpoint, or refuses it before anything is sent. Without an override it is
// Amazon's regional one: "BUCKET.s3.us-east-1.amazonaws.com". An override is a scheme, a host and perhaps a
// port: "http://127.0.0.1:8080", "https://[::1]/"; user, path, query and fragment are refused.
//
// The bucket leads the host if the configuration says so and it can: it must be one lower-case DNS label,
// because a certificate's wildcard covers one label only, and the host must be a name. Otherwise it leads the
// path.
ResultCode ResolveS3Endpoint(const ObjectStoreConfig& config, S3Endpoint& endpoint);
