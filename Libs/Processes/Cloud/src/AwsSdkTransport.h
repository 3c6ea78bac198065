#pragma once

#include <memory>

namespace Aws::Http {
class HttpClientFactory;
}

// Makes the HTTP clients of the SDK on Windows. The SDK's own set no limit for sending and none of ours for
// the look-up of a name and the answer's headers, and they keep cookies. Main thread.
std::shared_ptr<Aws::Http::HttpClientFactory> CreateSdkTransport();
