#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/SigV4Signer.h"
#include "Libs/Processes/Cloud/src/WinHttpRequest.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// One PUT over WinHTTP and the head of its answer. Made for one upload and used by its thread alone, in the
// order Open, Send, Receive. Follows no redirect, keeps no cookie, offers no password, and trusts the
// certificates that the system trusts.
class WinHttpExchange {
public:
    // In milliseconds. The request time-out limits each of: connecting with all that belongs to it, each
    // piece of the body, and the answer's head counted from the body's end.
    WinHttpExchange(uint32_t connectTimeoutMs, uint32_t requestTimeoutMs);

    // Sends nothing yet. The path is percent-encoded.
    ResultCode Open(const S3Endpoint& endpoint, const std::string& path);

    // Succeeds too when the connection breaks amid the body: a store that refuses early has answered already.
    // Names and values are printable ASCII.
    ResultCode Send(const std::vector<HttpHeader>& headers, std::span<const uint8_t> body);

    // The answer's body is not asked for. A missing or unreasonable ETag is empty.
    ResultCode Receive(uint32_t& status, std::string& eTag);

private:
    ResultCode OpenSession();
    bool SetTimeouts(void* handle) const;

    uint32_t m_connectTimeoutMs;
    uint32_t m_requestTimeoutMs;
    WinHttpHandle m_session;
    WinHttpHandle m_connection;
    WinHttpRequest m_request; // goes first
};
