#include "Libs/Processes/Cloud/src/WinHttpExchange.h"

#include <algorithm>
#include <limits>

#include <windows.h>

#include <winhttp.h>

namespace {

constexpr wchar_t UserAgent[] = L"MorvaneCrashReporter";

// Only for ASCII, which is all that endpoints, encoded paths and checked headers hold.
std::wstring Widen(std::string_view text) {
    return {text.begin(), text.end()};
}

bool SetOption(void* handle, DWORD option, DWORD value) {
    return WinHttpSetOption(handle, option, &value, sizeof(value)) != FALSE;
}

bool RequireModernTls(void* session) {
    constexpr DWORD Tls12 = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2;
    constexpr DWORD Tls13 = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_3;
    // Systems that do not know 1.3 refuse both together.
    return SetOption(session, WINHTTP_OPTION_SECURE_PROTOCOLS, Tls12 | Tls13) ||
           SetOption(session, WINHTTP_OPTION_SECURE_PROTOCOLS, Tls12);
}

// What a request must not do of its own accord. Without keep-alive the connection goes with its only request.
bool DisableAutomatisms(void* request) {
    return SetOption(request, WINHTTP_OPTION_DISABLE_FEATURE,
                     WINHTTP_DISABLE_REDIRECTS | WINHTTP_DISABLE_COOKIES | WINHTTP_DISABLE_AUTHENTICATION |
                         WINHTTP_DISABLE_KEEP_ALIVE);
}

bool AddHeader(void* request, const HttpHeader& header) {
    const std::wstring line = Widen(header.name + ": " + header.value);
    return WinHttpAddRequestHeaders(request, line.c_str(), static_cast<DWORD>(line.size()),
                                    WINHTTP_ADDREQ_FLAG_ADD | WINHTTP_ADDREQ_FLAG_REPLACE) != FALSE;
}

bool QueryStatus(void* request, uint32_t& status) {
    DWORD number = 0;
    DWORD size = sizeof(number);
    const bool known =
        WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                            WINHTTP_HEADER_NAME_BY_INDEX, &number, &size, WINHTTP_NO_HEADER_INDEX) != FALSE;
    status = number;
    return known;
}

std::string QueryETag(void* request) {
    wchar_t text[256]; // a longer tag is no MD5
    DWORD size = sizeof(text);
    if (!WinHttpQueryHeaders(request, WINHTTP_QUERY_ETAG, WINHTTP_HEADER_NAME_BY_INDEX, text, &size,
                             WINHTTP_NO_HEADER_INDEX)) {
        return {};
    }
    const std::wstring_view wide(text, size / sizeof(wchar_t));
    std::string eTag;
    for (const wchar_t c : wide) {
        if (c < ' ' || c > '~') {
            return {};
        }
        eTag += static_cast<char>(c);
    }
    return eTag;
}

} // namespace

WinHttpExchange::WinHttpExchange(uint32_t connectTimeoutMs, uint32_t requestTimeoutMs)
    : m_connectTimeoutMs(connectTimeoutMs), m_requestTimeoutMs(requestTimeoutMs) {}

ResultCode WinHttpExchange::OpenSession() {
    for (const DWORD access :
         {DWORD{WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY}, DWORD{WINHTTP_ACCESS_TYPE_DEFAULT_PROXY}}) {
        if (!m_session) {
            m_session.reset(WinHttpOpen(UserAgent, access, WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS,
                                        WINHTTP_FLAG_ASYNC));
        }
    }
    if (!m_session || !RequireModernTls(m_session.get())) {
        return "Failed to open HTTP session";
    }
    return Platform::Success;
}

// The limits of WinHttpRequest are what counts. These end what it gave up on systems where closing a request
// does not, and carry the connect time-out, which holds for each address of the store. Name look-ups are not
// part of it.
bool WinHttpExchange::SetTimeouts(void* handle) const {
    const auto clamp = [](uint32_t ms) {
        return static_cast<int>(std::min<uint32_t>(ms, std::numeric_limits<int>::max()));
    };
    const int request = clamp(m_requestTimeoutMs);
    return WinHttpSetTimeouts(handle, request, clamp(m_connectTimeoutMs), request, request) &&
           SetOption(handle, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, m_requestTimeoutMs);
}

ResultCode WinHttpExchange::Open(const S3Endpoint& endpoint, const std::string& path) {
    if (const ResultCode result = OpenSession(); !result) {
        return result;
    }
    m_connection.reset(WinHttpConnect(m_session.get(), Widen(endpoint.host).c_str(), endpoint.port, 0));
    if (!m_connection) {
        return "Failed to prepare HTTP connection";
    }
    const DWORD flags = WINHTTP_FLAG_ESCAPE_DISABLE | (endpoint.secure ? WINHTTP_FLAG_SECURE : 0);
    WinHttpHandle request(WinHttpOpenRequest(m_connection.get(), L"PUT", Widen(path).c_str(), nullptr,
                                             WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES, flags));
    if (!request || !DisableAutomatisms(request.get()) || !SetTimeouts(request.get()) ||
        !m_request.Attach(std::move(request))) {
        return "Failed to prepare HTTP request";
    }
    return Platform::Success;
}

ResultCode WinHttpExchange::Send(const std::vector<HttpHeader>& headers, std::span<const uint8_t> body) {
    for (const HttpHeader& header : headers) {
        if (!AddHeader(m_request.Handle(), header)) {
            return "Failed to add HTTP header";
        }
    }
    if (m_request.SendHead(m_requestTimeoutMs) != StepOutcome::Done) {
        return "Failed to send HTTP request";
    }
    while (!body.empty()) {
        const auto piece = body.first(std::min(body.size(), WinHttpRequest::LargestPiece));
        const StepOutcome outcome = m_request.Write(piece, m_requestTimeoutMs);
        if (outcome == StepOutcome::TimedOut) {
            return "Timed out while sending HTTP body";
        }
        if (outcome == StepOutcome::Failed) {
            break; // the store may have said why
        }
        body = body.subspan(piece.size());
    }
    return Platform::Success;
}

ResultCode WinHttpExchange::Receive(uint32_t& status, std::string& eTag) {
    if (m_request.ReceiveHead(m_requestTimeoutMs) != StepOutcome::Done) {
        return "Failed to receive HTTP response";
    }
    if (!QueryStatus(m_request.Handle(), status)) {
        return "HTTP response has no status";
    }
    eTag = QueryETag(m_request.Handle());
    return Platform::Success;
}
