#include "Libs/Processes/Cloud/src/AwsSdkTransport.h"

// Before windows.h, whose macros would rename members of the SDK.
#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/http/HttpClientFactory.h>
#include <aws/core/http/URI.h>
#include <aws/core/http/standard/StandardHttpRequest.h>
#include <aws/core/http/windows/WinHttpSyncHttpClient.h>

#include <windows.h>
// winhttp.h needs windows.h first
#include <winhttp.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace {

constexpr char AllocationTag[] = "SdkTransport";

bool SetOption(void* handle, DWORD option, DWORD value) {
    return WinHttpSetOption(handle, option, &value, sizeof(value)) != FALSE;
}

class LimitedClient : public Aws::Http::WinHttpSyncHttpClient {
public:
    explicit LimitedClient(const Aws::Client::ClientConfiguration& configuration)
        : WinHttpSyncHttpClient(configuration), m_limit(static_cast<DWORD>(configuration.requestTimeoutMs)) {
        constexpr DWORD Tls12 = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2;
        constexpr DWORD Tls13 = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_3;
        // Systems that do not know 1.3 refuse both together.
        PLATFORM_ASSERT(SetOption(GetOpenHandle(), WINHTTP_OPTION_SECURE_PROTOCOLS, Tls12 | Tls13) ||
                        SetOption(GetOpenHandle(), WINHTTP_OPTION_SECURE_PROTOCOLS, Tls12));
    }

private:
    // The connect timeout is the session's, from the configuration.
    void OverrideOptionsOnRequestHandle(void* request) const override {
        constexpr DWORD Steps[] = {WINHTTP_OPTION_RESOLVE_TIMEOUT, WINHTTP_OPTION_SEND_TIMEOUT,
                                   WINHTTP_OPTION_RECEIVE_TIMEOUT, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT};
        for (const DWORD step : Steps) {
            PLATFORM_ASSERT(SetOption(request, step, m_limit));
        }
        constexpr DWORD Unwanted =
            WINHTTP_DISABLE_REDIRECTS | WINHTTP_DISABLE_COOKIES | WINHTTP_DISABLE_AUTHENTICATION;
        PLATFORM_ASSERT(SetOption(request, WINHTTP_OPTION_DISABLE_FEATURE, Unwanted));
    }

    const DWORD m_limit; // milliseconds for each step
};

class TransportFactory : public Aws::Http::HttpClientFactory {
    using Method = Aws::Http::HttpMethod;

public:
    std::shared_ptr<Aws::Http::HttpClient>
    CreateHttpClient(const Aws::Client::ClientConfiguration& configuration) const override {
        return Aws::MakeShared<LimitedClient>(AllocationTag, configuration);
    }

    std::shared_ptr<Aws::Http::HttpRequest>
    CreateHttpRequest(const Aws::String& uri, Method method,
                      const Aws::IOStreamFactory& makeAnswer) const override {
        return CreateHttpRequest(Aws::Http::URI(uri), method, makeAnswer);
    }

    std::shared_ptr<Aws::Http::HttpRequest>
    CreateHttpRequest(const Aws::Http::URI& uri, Method method,
                      const Aws::IOStreamFactory& makeAnswer) const override {
        auto request = Aws::MakeShared<Aws::Http::Standard::StandardHttpRequest>(AllocationTag, uri, method);
        request->SetResponseStreamFactory(makeAnswer);
        return request;
    }
};

} // namespace

std::shared_ptr<Aws::Http::HttpClientFactory> CreateSdkTransport() {
    return Aws::MakeShared<TransportFactory>(AllocationTag);
}
