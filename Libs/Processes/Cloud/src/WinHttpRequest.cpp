#include "Libs/Processes/Cloud/src/WinHttpRequest.h"

#include <algorithm>
#include <atomic>
#include <vector>

#include <windows.h>

#include <winhttp.h>

namespace {

struct EventCloser {
    void operator()(void* handle) const { CloseHandle(handle); }
};

} // namespace

void WinHttpCloser::operator()(void* handle) const {
    WinHttpCloseHandle(handle);
}

struct WinHttpRequest::Shared {
    std::unique_ptr<void, EventCloser> stepEnded{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    std::atomic<bool> stepFailed = false;
    std::vector<uint8_t> piece; // being written; WinHTTP reads it until the step ends

    void EndStep(bool failed) {
        stepFailed = failed;
        SetEvent(stepEnded.get());
    }
};

struct WinHttpRequest::Callback {
    using Context = std::shared_ptr<Shared>; // WinHTTP's share: lives until the request's last notice

    static void CALLBACK Notify(HINTERNET, DWORD_PTR contextValue, DWORD status, void*, DWORD) {
        // WinHTTP carries pointers as integers. NOLINTNEXTLINE(performance-no-int-to-ptr)
        auto* context = reinterpret_cast<Context*>(contextValue);
        if (!context) {
            return;
        }
        switch (status) {
        case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
        case WINHTTP_CALLBACK_STATUS_WRITE_COMPLETE:
        case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
            (*context)->EndStep(false);
            break;
        case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
            (*context)->EndStep(true);
            break;
        case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING:
            delete context;
            break;
        default:
            break;
        }
    }
};

bool WinHttpRequest::Attach(WinHttpHandle request) {
    m_shared = std::make_shared<Shared>();
    m_shared->piece.reserve(LargestPiece);
    auto context = std::make_unique<Callback::Context>(m_shared);
    m_context = reinterpret_cast<DWORD_PTR>(context.get());
    if (!request || !m_shared->stepEnded ||
        !WinHttpSetOption(request.get(), WINHTTP_OPTION_CONTEXT_VALUE, &m_context, sizeof(m_context)) ||
        WinHttpSetStatusCallback(request.get(), &Callback::Notify,
                                 WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES,
                                 0) == WINHTTP_INVALID_STATUS_CALLBACK) {
        return false;
    }
    static_cast<void>(context.release()); // from here on the closing notice deletes it
    m_request = std::move(request);
    return true;
}

StepOutcome WinHttpRequest::SendHead(uint32_t limitMs) {
    return Wait(m_request && WinHttpSendRequest(m_request.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0,
                                                WINHTTP_NO_REQUEST_DATA, 0,
                                                WINHTTP_IGNORE_REQUEST_TOTAL_LENGTH, m_context),
                limitMs);
}

StepOutcome WinHttpRequest::Write(std::span<const uint8_t> piece, uint32_t limitMs) {
    if (!m_request || piece.size() > LargestPiece) {
        return StepOutcome::Failed;
    }
    m_shared->piece.assign(piece.begin(), piece.end());
    return Wait(
        WinHttpWriteData(m_request.get(), m_shared->piece.data(), static_cast<DWORD>(piece.size()), nullptr),
        limitMs);
}

StepOutcome WinHttpRequest::ReceiveHead(uint32_t limitMs) {
    return Wait(m_request && WinHttpReceiveResponse(m_request.get(), nullptr), limitMs);
}

// A call that did not start its step gives no notice.
StepOutcome WinHttpRequest::Wait(bool started, uint32_t limitMs) {
    if (!started) {
        return StepOutcome::Failed;
    }
    if (WaitForSingleObject(m_shared->stepEnded.get(), limitMs) != WAIT_OBJECT_0) {
        m_request.reset(); // on Windows this also ends the step
        return StepOutcome::TimedOut;
    }
    return m_shared->stepFailed ? StepOutcome::Failed : StepOutcome::Done;
}
