#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Libs/Processes/Cloud/src/HttpAddress.h"
#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// One request and its answer over the system's own HTTP, proxy and certificates. No redirection is followed,
// no password offered, no cookie kept, and the connection is closed after it. Any thread; all may throw
// std::bad_alloc.
struct HttpRequest {
    std::string method = "PUT";
    HttpAddress address;
    std::vector<HttpHeader> headers;      // printable ASCII; the body's length is among them
    Platform::ByteSource* body = nullptr; // never null in a call
    uint32_t connectTimeoutMs = ConnectTimeoutMs;
    uint32_t requestTimeoutMs = RequestTimeoutMs; // also once for the answer's headers and for its body
    std::size_t largestAnswer = 0; // bytes; a longer body of a 2xx answer is a failure. 0: not read
};

struct HttpAnswer : PutAnswer {
    std::string body; // of an answer but 2xx the beginning, at most 4 KiB, as far as it comes within a second
    uint32_t error = 0; // the system's number of the step that failed

    bool IsSuccess() const { return httpStatus >= 200 && httpStatus <= 299; }
};

// Blocks until the answer is there or a timeout has passed. Any answer is a success, also one that comes
// early, during the body.
ResultCode SendHttpRequest(const HttpRequest& request, HttpAnswer& answer);

// Sends an object and logs the step that failed, an answer but 2xx among them, without address and headers.
ResultCode PutOverHttp(const HttpRequest& request, PutAnswer& answer);
