#include <cstdlib>
#include <new>
#include <sstream>
#include <utility>

#include <aws/core/Aws.h>
#include <aws/core/auth/AWSCredentials.h>
#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/client/DefaultRetryStrategy.h>
#include <aws/core/utils/memory/stl/AWSStringStream.h>
#include <aws/s3/S3Client.h>
#include <aws/s3/model/PutObjectRequest.h>

#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Processes/Cloud/src/S3Endpoint.h"

namespace {

constexpr char AllocationTag[] = "UploaderS3AllocationTag";

// The SDK's string has an allocator of its own in some builds.
Aws::String ToAws(const std::string& text) {
    return {text.data(), text.size()};
}

// The client over the AWS SDK. A client of the SDK is built for every upload and goes with it.
class AwsSdkObjectStore : public IObjectStore {
public:
    explicit AwsSdkObjectStore(ObjectStoreConfig config) : m_config(std::move(config)) {}

    ResultCode PutObject(const PutObjectRequest& request, std::string& eTag) override {
        eTag.clear();
        try {
            return TryPutObject(request, eTag);
        } catch (const std::bad_alloc&) {
            return "Not enough memory for the upload";
        }
    }

private:
    ResultCode TryPutObject(const PutObjectRequest& request, std::string& eTag) const;
    Aws::Client::ClientConfiguration ClientConfiguration() const;

    const ObjectStoreConfig m_config;
};

Aws::Client::ClientConfiguration AwsSdkObjectStore::ClientConfiguration() const {
    Aws::Client::ClientConfiguration configuration;
    configuration.region = ToAws(m_config.region);
    configuration.scheme = Aws::Http::Scheme::HTTPS;
    configuration.endpointOverride = ToAws(m_config.endpointOverride); // its scheme wins over ours
    configuration.requestTimeoutMs = static_cast<long>(m_config.requestTimeoutMs);
    configuration.connectTimeoutMs = static_cast<long>(m_config.connectTimeoutMs);
    configuration.retryStrategy =
        Aws::MakeShared<Aws::Client::DefaultRetryStrategy>(AllocationTag, 0, 0); // one attempt, no waiting
    return configuration;
}

ResultCode AwsSdkObjectStore::TryPutObject(const PutObjectRequest& request, std::string& eTag) const {
    // The same configurations are refused, and the same buckets go into the path, as with our own client.
    S3Endpoint endpoint;
    if (const ResultCode result = ResolveS3Endpoint(m_config, endpoint); !result) {
        return result;
    }
    const Aws::Auth::AWSCredentials credentials(ToAws(m_config.accessKey), ToAws(m_config.secretKey));
    const Aws::S3::S3Client client(credentials, ClientConfiguration(),
                                   Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy::RequestDependent,
                                   endpoint.bucketInHost);

    const auto body =
        Aws::MakeShared<Aws::StringStream>(AllocationTag, std::ios::in | std::ios::out | std::ios::binary);
    body->write(reinterpret_cast<const char*>(request.body.data()),
                static_cast<std::streamsize>(request.body.size()));
    body->flush();
    body->seekg(0);
    if (!*body) {
        return "Failed to copy the body into a stream"; // a stream keeps its failures to itself
    }
    Aws::S3::Model::PutObjectRequest put;
    put.SetBucket(ToAws(m_config.bucket));
    put.SetBody(body);
    put.SetContentLength(request.contentLength);
    put.SetContentMD5(ToAws(request.contentMd5));
    put.SetContentType(ToAws(request.contentType));
    put.SetKey(ToAws(request.key));

    const auto outcome = client.PutObject(put);
    if (!outcome.IsSuccess()) {
        return "Store refused the object";
    }
    const Aws::String& tag = outcome.GetResult().GetETag();
    eTag.assign(tag.data(), tag.size());
    return Platform::Success;
}

// Without this a client configuration asks 169.254.169.254 for a region as soon as it is made, before any
// region can be set. Children of the agent inherit it, which is as well.
void ForbidInstanceMetadata() {
#ifdef _WIN32
    _putenv_s("AWS_EC2_METADATA_DISABLED", "true");
#else
    setenv("AWS_EC2_METADATA_DISABLED", "true", 1); // NOLINT(concurrency-mt-unsafe): before any other thread
#endif
}

} // namespace

std::unique_ptr<IObjectStore> CreateObjectStore(const ObjectStoreConfig& config) {
    return std::make_unique<AwsSdkObjectStore>(config);
}

ResultCode InitializeObjectStores() {
    ForbidInstanceMetadata();
    const Aws::SDKOptions options; // no logging, no memory manager, the SDK's own HTTP and hashing
    Aws::InitAPI(options);
    return Platform::Success;
}

ResultCode ShutdownObjectStores() {
    const Aws::SDKOptions options;
    Aws::ShutdownAPI(options);
    return Platform::Success;
}
