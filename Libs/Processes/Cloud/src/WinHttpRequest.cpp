#include "Libs/Processes/Cloud/src/WinHttpRequest.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <string_view>
#include <utility>

#include <windows.h>
// winhttp.h needs windows.h first
#include <winhttp.h>

#include "Libs/Processes/Cloud/src/S3Upload.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Handle.h"

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
    std::atomic<DWORD> count = 0; // of bytes that can be read, or were
    std::vector<uint8_t> piece;   // WinHTTP reads or fills it until the step ends

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
    case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
        (*context)->count = *static_cast<const DWORD*>(information);
        (*context)->End(ERROR_SUCCESS);
        break;
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
        (*context)->count = length;
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

// One request, in the order Open, Send, Receive. Asynchronous, because the timeouts of synchronous calls
// start again with every byte: a peer that sends byte by byte would hold such a call for ever. Each step has
// its own limit here; a step that exceeds it closes the request.
class Exchange {
public:
    explicit Exchange(const HttpRequest& request) : m_given(request) {}

    // Sends nothing yet.
    ResultCode Open();

    // Also succeeds if the connection breaks during the body: the store may have refused early, and Receive
    // shows its answer.
    ResultCode Send();

    // All but the answer's body.
    ResultCode Receive(HttpAnswer& answer);

    // The body, after Receive. Fails if it has more bytes than the limit.
    ResultCode ReadBody(std::size_t limit, DWORD limitMs, std::string& body);

    // The system's number of the last step that failed; 0 if none has.
    DWORD Error() const { return m_error; }

private:
    enum class Outcome { Done, Failed, TimedOut };

    bool OpenSession();
    bool SetTimeouts(void* handle) const;
    bool Attach(WinHttpHandle request);
    Outcome Wait(bool isStarted) { return Wait(isStarted, m_given.requestTimeoutMs); }
    Outcome Wait(bool isStarted, DWORD limitMs);
    std::string QueryText(DWORD header) const;

    const HttpRequest& m_given;
    StepContext m_step;
    DWORD_PTR m_context = 0; // WinHTTP's share of m_step, as the callback gets it
    DWORD m_error = ERROR_SUCCESS;
    WinHttpHandle m_session;
    WinHttpHandle m_connection;
    WinHttpHandle m_request; // destroyed first
};

ResultCode Exchange::Open() {
    const HttpAddress& address = m_given.address;
    if (!OpenSession()) {
        return "Failed to open HTTP session";
    }
    m_connection =
        WinHttpHandle(WinHttpConnect(m_session.Get(), Widen(address.host).c_str(), address.port, 0));
    if (!m_connection) {
        return "Failed to prepare HTTP connection";
    }
    const DWORD flags = WINHTTP_FLAG_ESCAPE_DISABLE | (address.secure ? WINHTTP_FLAG_SECURE : 0);
    WinHttpHandle request(WinHttpOpenRequest(m_connection.Get(), Widen(m_given.method).c_str(),
                                             Widen(address.target).c_str(), nullptr, WINHTTP_NO_REFERER,
                                             WINHTTP_DEFAULT_ACCEPT_TYPES, flags));
    // Without keep-alive the connection is closed after its only request.
    constexpr DWORD Unwanted = WINHTTP_DISABLE_REDIRECTS | WINHTTP_DISABLE_COOKIES |
                               WINHTTP_DISABLE_AUTHENTICATION | WINHTTP_DISABLE_KEEP_ALIVE;
    if (!request || !SetOption(request.Get(), WINHTTP_OPTION_DISABLE_FEATURE, Unwanted) ||
        !SetTimeouts(request.Get()) || !Attach(std::move(request))) {
        return "Failed to prepare HTTP request";
    }
    return Platform::Success;
}

bool Exchange::OpenSession() {
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
bool Exchange::SetTimeouts(void* handle) const {
    const auto clamp = [](uint32_t ms) {
        return static_cast<int>(std::min<uint32_t>(ms, std::numeric_limits<int>::max()));
    };
    const int request = clamp(m_given.requestTimeoutMs);
    return WinHttpSetTimeouts(handle, request, clamp(m_given.connectTimeoutMs), request, request) &&
           SetOption(handle, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, m_given.requestTimeoutMs);
}

bool Exchange::Attach(WinHttpHandle request) {
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
Exchange::Outcome Exchange::Wait(bool isStarted, DWORD limitMs) {
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

ResultCode Exchange::Send() {
    for (const HttpHeader& header : m_given.headers) {
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
    Platform::ByteSource& body = *m_given.body;
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

ResultCode Exchange::Receive(HttpAnswer& answer) {
    if (Wait(WinHttpReceiveResponse(m_request.Get(), nullptr)) != Outcome::Done) {
        return "Failed to receive HTTP response";
    }
    DWORD number = 0;
    DWORD size = sizeof(number);
    if (!WinHttpQueryHeaders(m_request.Get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                             WINHTTP_HEADER_NAME_BY_INDEX, &number, &size, WINHTTP_NO_HEADER_INDEX)) {
        return "HTTP response has no status";
    }
    answer.httpStatus = number;
    answer.eTag = QueryText(WINHTTP_QUERY_ETAG);
    answer.retryAfterSeconds = RetryAfterSeconds(QueryText(WINHTTP_QUERY_RETRY_AFTER));
    return Platform::Success;
}

// Asks how much is there before each read: Wine reads what was asked for within the call, and waits for it.
ResultCode Exchange::ReadBody(std::size_t limit, DWORD limitMs, std::string& body) {
    const uint64_t end = GetTickCount64() + limitMs;
    const auto left = [end] { return static_cast<DWORD>(end - std::min<uint64_t>(GetTickCount64(), end)); };
    std::vector<uint8_t>& piece = m_step->piece;
    while (body.size() <= limit) {
        if (Wait(WinHttpQueryDataAvailable(m_request.Get(), nullptr), left()) != Outcome::Done) {
            return "Failed to read HTTP answer";
        }
        if (m_step->count == 0) {
            return Platform::Success;
        }
        piece.resize(std::min({std::size_t{m_step->count}, limit + 1 - body.size(), LargestPiece}));
        if (Wait(WinHttpReadData(m_request.Get(), piece.data(), static_cast<DWORD>(piece.size()), nullptr),
                 left()) != Outcome::Done) {
            return "Failed to read HTTP answer";
        }
        body.append(piece.begin(), piece.begin() + m_step->count);
    }
    return "HTTP answer is too long";
}

std::string Exchange::QueryText(DWORD header) const {
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

} // namespace

ResultCode SendHttpRequest(const HttpRequest& request, HttpAnswer& answer) {
    Exchange exchange(request);
    const ResultCode result = [&]() -> ResultCode {
        RETURN_IF_FAILED(exchange.Open());
        RETURN_IF_FAILED(exchange.Send());
        RETURN_IF_FAILED(exchange.Receive(answer));
        if (!answer.IsSuccess()) {
            // A part will do.
            static_cast<void>(exchange.ReadBody(LargestErrorAnswer, ErrorAnswerTime, answer.body));
            return Platform::Success;
        }
        return request.largestAnswer == 0
                   ? Platform::Success
                   : exchange.ReadBody(request.largestAnswer, request.requestTimeoutMs, answer.body);
    }();
    answer.error = exchange.Error();
    return result;
}

ResultCode PutOverHttp(const HttpRequest& request, PutAnswer& answer) {
    HttpAnswer heard;
    const ResultCode result = SendHttpRequest(request, heard);
    answer = {heard.eTag, heard.httpStatus, heard.retryAfterSeconds};
    if (!result) {
        return LoggedStep(result, heard.error, {});
    }
    return heard.IsSuccess() ? result : LoggedStep("Store refused the object", heard.httpStatus, heard.body);
}
