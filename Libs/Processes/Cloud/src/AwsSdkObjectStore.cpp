#include <chrono>
#include <cstdlib>
#include <memory>
#include <type_traits>
#include <utility>

#include <aws/core/Aws.h>
#include <aws/core/auth/AWSCredentials.h>
#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/client/DefaultRetryStrategy.h>
#include <aws/s3/S3Client.h>
#include <aws/s3/model/PutObjectRequest.h>

#include "Libs/Processes/Cloud/src/AwsSdkBody.h"
#include "Libs/Processes/Cloud/src/AwsSdkTransport.h"
#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/S3Upload.h"

namespace {

constexpr char AllocationTag[] = "UploaderS3AllocationTag";

// The SDK's string has its own allocator in some builds.
Aws::String ToAws(const std::string& text) {
    return {text.data(), text.size()};
}

// What not every version of the SDK knows, or knows under the same type.
template <class Configuration>
void SetWhatVersionsDifferIn(Configuration& configuration) {
    using Redirects = decltype(configuration.followRedirects);
    if constexpr (std::is_same_v<Redirects, bool>) {
        configuration.followRedirects = false;
    } else {
        configuration.followRedirects = Redirects::NEVER;
    }
    if constexpr (requires { configuration.checksumConfig.requestChecksumCalculation; }) {
        // By default these send a checksum after the body, which many S3-compatible stores refuse.
        auto& calculation = configuration.checksumConfig.requestChecksumCalculation;
        calculation = std::remove_reference_t<decltype(calculation)>::WHEN_REQUIRED;
    }
    if constexpr (requires { configuration.allowSystemProxy; }) {
        configuration.allowSystemProxy = true;
    }
}

// The SDK's timeouts start again with every byte, and some transports have none for an answer that drips.
// This one starts again only when bytes were sent. The SDK asks between two pieces of the body or the answer,
// so a silent store is left to the transport's own timeouts.
void LimitWaiting(Aws::S3::Model::PutObjectRequest& put, uint32_t timeoutMs) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = [timeoutMs] { return Clock::now() + std::chrono::milliseconds(timeoutMs); };
    const auto end = std::make_shared<Clock::time_point>(deadline()); // on the calling thread only
    put.SetDataSentEventHandler([=](const Aws::Http::HttpRequest*, long long) { *end = deadline(); });
    put.SetContinueRequestHandler([=](const Aws::Http::HttpRequest*) { return Clock::now() < *end; });
}

// The client over the AWS SDK. Each upload has its own client of the SDK.
class AwsSdkObjectStore : public IObjectStore {
public:
    explicit AwsSdkObjectStore(ObjectStoreConfig config) : m_config(std::move(config)) {}

    ResultCode PutObject(const PutObjectRequest& request, PutAnswer& answer) override;

private:
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
    SetWhatVersionsDifferIn(configuration);
    return configuration;
}

// Gives the failure's step.
ResultCode Refusal(const auto& error, PutAnswer& answer) { // its type differs by version
    const int status = static_cast<int>(error.GetResponseCode());
    const std::string code = "<Code>" + std::string(error.GetExceptionName().c_str()) + "</Code>";
    if (status <= 0) {
        return LoggedStep("Failed to reach the store", 0, code);
    }
    answer.httpStatus = static_cast<uint32_t>(status);
    const auto& headers = error.GetResponseHeaders();
    if (const auto retryAfter = headers.find("retry-after"); retryAfter != headers.end()) {
        answer.retryAfterSeconds = RetryAfterSeconds(retryAfter->second.c_str());
    }
    return LoggedStep("Store refused the object", answer.httpStatus, code);
}

ResultCode AwsSdkObjectStore::PutObject(const PutObjectRequest& request, PutAnswer& answer) {
    answer = {};
    // Refuses the same configurations, and puts the same buckets into the path, as our own client.
    S3Endpoint endpoint;
    RETURN_IF_FAILED(ResolveS3Endpoint(m_config, endpoint));
    const Aws::Auth::AWSCredentials credentials(ToAws(m_config.accessKey), ToAws(m_config.secretKey));
    const Aws::S3::S3Client client(credentials, ClientConfiguration(),
                                   Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy::RequestDependent,
                                   endpoint.bucketInHost);

    Aws::S3::Model::PutObjectRequest put;
    put.SetBucket(ToAws(m_config.bucket));
    put.SetBody(Aws::MakeShared<AwsSdkBody>(AllocationTag, *request.body));
    put.SetContentLength(request.contentLength);
    put.SetContentMD5(ToAws(request.contentMd5));
    put.SetContentType(ToAws(request.contentType));
    put.SetKey(ToAws(request.key));
    LimitWaiting(put, m_config.requestTimeoutMs);

    const auto outcome = client.PutObject(put);
    if (!outcome.IsSuccess()) {
        return Refusal(outcome.GetError(), answer);
    }
    const Aws::String& tag = outcome.GetResult().GetETag();
    answer.eTag.assign(tag.data(), tag.size());
    answer.httpStatus = 200; // or another 2xx: the SDK does not say
    return Platform::Success;
}

// Without this every new client configuration asks 169.254.169.254 for a region, before one can be set.
// Children of the agent inherit it, which does no harm.
void ForbidInstanceMetadata() {
#ifdef _WIN32
    _putenv_s("AWS_EC2_METADATA_DISABLED", "true");
#else
    setenv("AWS_EC2_METADATA_DISABLED", "true", 1); // NOLINT(concurrency-mt-unsafe): before any other thread
#endif
}

bool g_isRunning = false; // main thread

} // namespace

std::unique_ptr<IObjectStore> CreateObjectStore(const ObjectStoreConfig& config) {
    return std::make_unique<AwsSdkObjectStore>(config);
}

ResultCode InitializeObjectStores() {
    ForbidInstanceMetadata();
    Aws::SDKOptions options; // no logging, no memory manager, the SDK's own hashing
#ifdef _WIN32
    options.httpOptions.httpClientFactory_create_fn = CreateSdkTransport;
#endif
    Aws::InitAPI(options);
    g_isRunning = true;
    return Platform::Success;
}

ResultCode ShutdownObjectStores() {
    if (std::exchange(g_isRunning, false)) {
        const Aws::SDKOptions options;
        Aws::ShutdownAPI(options);
    }
    return Platform::Success;
}
