#include "Libs/Processes/Cloud/src/ObjectStore.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <limits>
#include <utility>

#include <windows.h>
// winhttp.h needs windows.h first
#include <winhttp.h>

#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/S3Upload.h"
#include "Libs/Processes/Cloud/src/SigV4.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Handle.h"

// The client of builds without the AWS SDK: signed requests over the system's own HTTP and certificates. Logs
// no secrets, and of an answer its number and code alone.

namespace {

bool CloseWinHttp(void* handle) {
    return WinHttpCloseHandle(handle) != FALSE;
}
using WinHttpHandle = Platform::Handle<CloseWinHttp>;

constexpr std::size_t LargestPiece = std::size_t{64} << 10;
constexpr std::size_t LargestErrorAnswer = std::size_t{4} << 10;
constexpr DWORD ErrorAnswerTime = 1000; // milliseconds, for an upload that has failed already

// What WinHTTP's callback touches. Shared with it, since a step that was given up can end after the request
// is gone.
struct StepState {
    Platform::KernelHandle ended{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    std::atomic<DWORD> error = ERROR_SUCCESS;
    std::atomic<DWORD> bytesRead = 0;
    std::vector<uint8_t> piece; // WinHTTP reads or fills it until the step ends

    void End(DWORD stepError) {
        error = stepError;
        SetEvent(ended.Get());
    }
};

// Owned by the request's WinHTTP context: deleted at its last notice.
using StepContext = std::shared_ptr<StepState>;

// On a thread of WinHTTP.
void CALLBACK OnNotice(HINTERNET, DWORD_PTR contextValue, DWORD status, void* information, DWORD length) {
    // WinHTTP carries pointers as integers. NOLINTNEXTLINE(performance-no-int-to-ptr)
    auto* const context = reinterpret_cast<StepContext*>(contextValue);
    if (!context) {
        return;
    }
    switch (status) {
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_WRITE_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
        (*context)->End(ERROR_SUCCESS);
        break;
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
        (*context)->bytesRead = length;
        (*context)->End(ERROR_SUCCESS);
        break;
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
        (*context)->End(static_cast<const WINHTTP_ASYNC_RESULT*>(information)->dwError);
        break;
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING:
        delete context;
        break;
    default:
        break;
    }
}

// For ASCII only, which is all that endpoints, encoded paths and headers hold.
std::wstring Widen(std::string_view text) {
    return {text.begin(), text.end()};
}

bool SetOption(void* handle, DWORD option, DWORD value) {
    return WinHttpSetOption(handle, option, &value, sizeof(value)) != FALSE;
}

// One PUT, in the order Open, Send, Receive. Asynchronous, because the timeouts of synchronous calls start
// again with every byte: a peer that sends byte by byte would hold such a call for ever. Each step has its
// own limit here; a step that exceeds it closes the request.
class WinHttpPut {
public:
    WinHttpPut(uint32_t connectTimeoutMs, uint32_t requestTimeoutMs)
        : m_connectTimeoutMs(connectTimeoutMs), m_requestTimeoutMs(requestTimeoutMs) {}

    // Sends nothing yet. The path is percent-encoded.
    ResultCode Open(const S3Endpoint& endpoint, const std::string& path);

    // Also succeeds if the connection breaks during the body: the store may have refused early, and Receive
    // shows its answer. Names and values are printable ASCII.
    ResultCode Send(const std::vector<SigV4::Header>& headers, Platform::ByteSource& body);

    // Does not read the answer's body. A missing or unreasonable ETag is empty.
    ResultCode Receive(PutAnswer& answer);

    // The beginning of the body after Receive, as far as it comes soon.
    std::string ReadErrorAnswer();

    // The system's number of the last step that failed; 0 if none has.
    DWORD Error() const { return m_error; }

private:
    enum class Outcome { Done, Failed, TimedOut };

    bool OpenSession();
    bool SetTimeouts(void* handle) const;
    bool Attach(WinHttpHandle request);
    Outcome Wait(bool isStarted) { return Wait(isStarted, m_requestTimeoutMs); }
    Outcome Wait(bool isStarted, DWORD limitMs);
    std::string QueryText(DWORD header) const;

    const uint32_t m_connectTimeoutMs;
    const uint32_t m_requestTimeoutMs;
    StepContext m_step;
    DWORD_PTR m_context = 0; // WinHTTP's share of m_step, as the callback gets it
    DWORD m_error = ERROR_SUCCESS;
    WinHttpHandle m_session;
    WinHttpHandle m_connection;
    WinHttpHandle m_request; // destroyed first
};

ResultCode WinHttpPut::Open(const S3Endpoint& endpoint, const std::string& path) {
    if (!OpenSession()) {
        return "Failed to open HTTP session";
    }
    m_connection =
        WinHttpHandle(WinHttpConnect(m_session.Get(), Widen(endpoint.host).c_str(), endpoint.port, 0));
    if (!m_connection) {
        return "Failed to prepare HTTP connection";
    }
    const DWORD flags = WINHTTP_FLAG_ESCAPE_DISABLE | (endpoint.secure ? WINHTTP_FLAG_SECURE : 0);
    WinHttpHandle request(WinHttpOpenRequest(m_connection.Get(), L"PUT", Widen(path).c_str(), nullptr,
                                             WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES, flags));
    // Without keep-alive the connection is closed after its only request.
    constexpr DWORD Unwanted = WINHTTP_DISABLE_REDIRECTS | WINHTTP_DISABLE_COOKIES |
                               WINHTTP_DISABLE_AUTHENTICATION | WINHTTP_DISABLE_KEEP_ALIVE;
    if (!request || !SetOption(request.Get(), WINHTTP_OPTION_DISABLE_FEATURE, Unwanted) ||
        !SetTimeouts(request.Get()) || !Attach(std::move(request))) {
        return "Failed to prepare HTTP request";
    }
    return Platform::Success;
}

bool WinHttpPut::OpenSession() {
    for (const DWORD access :
         {DWORD{WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY}, DWORD{WINHTTP_ACCESS_TYPE_DEFAULT_PROXY}}) {
        if (!m_session) {
            m_session = WinHttpHandle(WinHttpOpen(L"MorvaneCrashReporter", access, WINHTTP_NO_PROXY_NAME,
                                                  WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC));
        }
    }
    constexpr DWORD Tls12 = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2;
    constexpr DWORD Tls13 = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_3;
    // Systems that do not know 1.3 refuse both together.
    return m_session && (SetOption(m_session.Get(), WINHTTP_OPTION_SECURE_PROTOCOLS, Tls12 | Tls13) ||
                         SetOption(m_session.Get(), WINHTTP_OPTION_SECURE_PROTOCOLS, Tls12));
}

// Wait's limits decide. These end an abandoned step on systems where closing the request does not, and bring
// the connect timeout, which holds for each address of the store and does not cover the name's look-up.
bool WinHttpPut::SetTimeouts(void* handle) const {
    const auto clamp = [](uint32_t ms) {
        return static_cast<int>(std::min<uint32_t>(ms, std::numeric_limits<int>::max()));
    };
    const int request = clamp(m_requestTimeoutMs);
    return WinHttpSetTimeouts(handle, request, clamp(m_connectTimeoutMs), request, request) &&
           SetOption(handle, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, m_requestTimeoutMs);
}

bool WinHttpPut::Attach(WinHttpHandle request) {
    m_step = std::make_shared<StepState>();
    m_step->piece.reserve(LargestPiece);
    auto context = std::make_unique<StepContext>(m_step);
    m_context = reinterpret_cast<DWORD_PTR>(context.get());
    if (!m_step->ended ||
        !WinHttpSetOption(request.Get(), WINHTTP_OPTION_CONTEXT_VALUE, &m_context, sizeof(m_context)) ||
        WinHttpSetStatusCallback(request.Get(), &OnNotice,
                                 WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES,
                                 0) == WINHTTP_INVALID_STATUS_CALLBACK) {
        return false;
    }
    static_cast<void>(context.release()); // from here on the last notice deletes it
    m_request = std::move(request);
    return true;
}

// isStarted: whether WinHTTP took the step; it gives no notice of one that it refused.
WinHttpPut::Outcome WinHttpPut::Wait(bool isStarted, DWORD limitMs) {
    if (!isStarted) {
        m_error = GetLastError();
        return Outcome::Failed;
    }
    if (WaitForSingleObject(m_step->ended.Get(), limitMs) != WAIT_OBJECT_0) {
        static_cast<void>(m_request.Close()); // on Windows this also ends the step
        m_error = ERROR_WINHTTP_TIMEOUT;
        return Outcome::TimedOut;
    }
    m_error = m_step->error;
    return m_error != ERROR_SUCCESS ? Outcome::Failed : Outcome::Done;
}

ResultCode WinHttpPut::Send(const std::vector<SigV4::Header>& headers, Platform::ByteSource& body) {
    for (const SigV4::Header& header : headers) {
        const std::wstring line = Widen(header.name + ": " + header.value);
        if (!WinHttpAddRequestHeaders(m_request.Get(), line.c_str(), static_cast<DWORD>(line.size()),
                                      WINHTTP_ADDREQ_FLAG_ADD | WINHTTP_ADDREQ_FLAG_REPLACE)) {
            return "Failed to add HTTP header";
        }
    }
    if (Wait(WinHttpSendRequest(m_request.Get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0,
                                WINHTTP_IGNORE_REQUEST_TOTAL_LENGTH, m_context)) != Outcome::Done) {
        return "Failed to send HTTP request";
    }
    std::vector<uint8_t>& piece = m_step->piece;
    for (uint64_t sent = 0; sent < body.GetSize(); sent += piece.size()) {
        piece.resize(static_cast<std::size_t>(std::min<uint64_t>(body.GetSize() - sent, LargestPiece)));
        if (!body.Read(sent, piece)) {
            return Platform::ReadFailure;
        }
        switch (Wait(
            WinHttpWriteData(m_request.Get(), piece.data(), static_cast<DWORD>(piece.size()), nullptr))) {
        case Outcome::TimedOut:
            return "Timed out while sending HTTP body";
        case Outcome::Failed:
            return Platform::Success; // the store may have said why
        case Outcome::Done:
            break;
        }
    }
    return Platform::Success;
}

ResultCode WinHttpPut::Receive(PutAnswer& answer) {
    if (Wait(WinHttpReceiveResponse(m_request.Get(), nullptr)) != Outcome::Done) {
        return "Failed to receive HTTP response";
    }
    DWORD number = 0;
    DWORD size = sizeof(number);
    if (!WinHttpQueryHeaders(m_request.Get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                             WINHTTP_HEADER_NAME_BY_INDEX, &number, &size, WINHTTP_NO_HEADER_INDEX)) {
        return "HTTP response has no status";
    }
    answer = {QueryText(WINHTTP_QUERY_ETAG), number, RetryAfterSeconds(QueryText(WINHTTP_QUERY_RETRY_AFTER))};
    return Platform::Success;
}

std::string WinHttpPut::ReadErrorAnswer() {
    const uint64_t end = GetTickCount64() + ErrorAnswerTime;
    std::string answer;
    for (uint64_t now = GetTickCount64(); now < end && answer.size() < LargestErrorAnswer;
         now = GetTickCount64()) {
        std::vector<uint8_t>& piece = m_step->piece;
        piece.resize(LargestErrorAnswer - answer.size());
        if (Wait(WinHttpReadData(m_request.Get(), piece.data(), static_cast<DWORD>(piece.size()), nullptr),
                 static_cast<DWORD>(end - now)) != Outcome::Done ||
            m_step->bytesRead == 0) {
            break;
        }
        answer.append(piece.begin(), piece.begin() + m_step->bytesRead);
    }
    return answer;
}

std::string WinHttpPut::QueryText(DWORD header) const {
    wchar_t text[256]; // what is longer is no MD5 and no number
    DWORD size = sizeof(text);
    if (!WinHttpQueryHeaders(m_request.Get(), header, WINHTTP_HEADER_NAME_BY_INDEX, text, &size,
                             WINHTTP_NO_HEADER_INDEX)) {
        return {};
    }
    std::string narrow;
    for (const wchar_t c : std::wstring_view(text, size / sizeof(wchar_t))) {
        if (c < ' ' || c > '~') {
            return {};
        }
        narrow += static_cast<char>(c);
    }
    return narrow;
}

std::string CurrentTimestamp() {
    SYSTEMTIME utc;
    GetSystemTime(&utc);
    char text[sizeof("20130524T000000Z") + 32];
    std::snprintf(text, sizeof(text), "%04u%02u%02uT%02u%02u%02uZ", unsigned{utc.wYear}, unsigned{utc.wMonth},
                  unsigned{utc.wDay}, unsigned{utc.wHour}, unsigned{utc.wMinute}, unsigned{utc.wSecond});
    return text;
}

class WinHttpObjectStore : public IObjectStore {
public:
    explicit WinHttpObjectStore(ObjectStoreConfig config) : m_config(std::move(config)) {}

    ResultCode PutObject(const PutObjectRequest& request, PutAnswer& answer) override;

private:
    ResultCode MakeSignedPut(const PutObjectRequest& request, const S3Endpoint& endpoint,
                             SigV4::Request& signedPut) const;

    const ObjectStoreConfig m_config;
};

ResultCode WinHttpObjectStore::PutObject(const PutObjectRequest& request, PutAnswer& answer) {
    answer = {};
    if (!std::cmp_equal(request.contentLength, request.body->GetSize())) {
        return "Announced length is not the length of the body"; // no store takes it
    }
    S3Endpoint endpoint;
    SigV4::Request signedPut;
    WinHttpPut put(m_config.connectTimeoutMs, m_config.requestTimeoutMs);
    const ResultCode result = [&]() -> ResultCode {
        RETURN_IF_FAILED(ResolveS3Endpoint(m_config, endpoint));
        RETURN_IF_FAILED(MakeSignedPut(request, endpoint, signedPut));
        RETURN_IF_FAILED(put.Open(endpoint, signedPut.path));
        RETURN_IF_FAILED(put.Send(signedPut.headers, *request.body));
        return put.Receive(answer);
    }();
    if (!result) {
        return LoggedStep(result, put.Error(), {});
    }
    if (answer.httpStatus < 200 || answer.httpStatus > 299) {
        return LoggedStep("Store refused the object", answer.httpStatus, put.ReadErrorAnswer());
    }
    return Platform::Success;
}

// Over http the signature covers the body. Over https the transport protects it, which saves a second hash.
ResultCode WinHttpObjectStore::MakeSignedPut(const PutObjectRequest& request, const S3Endpoint& endpoint,
                                             SigV4::Request& signedPut) const {
    const SigV4::Scope scope = {CurrentTimestamp(), m_config.region};
    const auto payloadHash =
        endpoint.secure ? std::optional<std::string>(SigV4::UnsignedPayload) : SigV4::HashOf(*request.body);
    if (!payloadHash) {
        return "Failed to hash the body";
    }
    signedPut.method = "PUT";
    signedPut.path = SigV4::EncodePath(endpoint.bucketPath + request.key);
    signedPut.payloadHash = *payloadHash;
    signedPut.headers = {
        {"Host", endpoint.HostHeader()},        {"Content-Length", std::to_string(request.contentLength)},
        {"Content-MD5", request.contentMd5},    {"Content-Type", request.contentType},
        {"x-amz-content-sha256", *payloadHash}, {"x-amz-date", scope.timestamp}};
    const auto authorization =
        SigV4::Authorization(signedPut, {m_config.accessKey, m_config.secretKey}, scope);
    if (!authorization) {
        return "Failed to sign the request";
    }
    signedPut.headers.push_back({"Authorization", *authorization});
    return Platform::Success;
}

} // namespace

std::unique_ptr<IObjectStore> CreateObjectStore(const ObjectStoreConfig& config) {
    return std::make_unique<WinHttpObjectStore>(config);
}

// The system's HTTP needs no bracket.
ResultCode InitializeObjectStores() {
    return Platform::Success;
}
ResultCode ShutdownObjectStores() {
    return Platform::Success;
}
