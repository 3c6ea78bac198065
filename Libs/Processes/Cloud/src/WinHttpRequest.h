#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

struct WinHttpCloser {
    void operator()(void* handle) const;
};
using WinHttpHandle = std::unique_ptr<void, WinHttpCloser>;

enum class StepOutcome { Done, Failed, TimedOut };

// One request of an asynchronous WinHTTP session, taken step by step, each step with its limit. Asynchronous,
// because the time-outs of synchronous calls start anew with every byte: a peer that dribbles would hold such
// a call for ever. Owned and called by the thread that makes the request. What WinHTTP's callback touches is
// shared with it and may outlive this object, since a step that was given up can still end later.
class WinHttpRequest {
public:
    static constexpr std::size_t LargestPiece = std::size_t{64} << 10;

    WinHttpRequest() = default;
    ~WinHttpRequest() = default;
    WinHttpRequest(const WinHttpRequest&) = delete; // WinHTTP's callback belongs to one object
    WinHttpRequest& operator=(const WinHttpRequest&) = delete;

    // Takes the request over. False when the system refuses.
    [[nodiscard]] bool Attach(WinHttpHandle request);
    void* Handle() const { return m_request.get(); }

    // The steps. After TimedOut the request is closed and every further step fails. The limit is in
    // milliseconds.
    StepOutcome SendHead(uint32_t limitMs);                              // connects, sends line and headers
    StepOutcome Write(std::span<const uint8_t> piece, uint32_t limitMs); // at most LargestPiece
    StepOutcome ReceiveHead(uint32_t limitMs);

private:
    struct Shared;
    struct Callback;
    StepOutcome Wait(bool started, uint32_t limitMs);

    std::shared_ptr<Shared> m_shared;
    uintptr_t m_context = 0; // WinHTTP's share, as the callback gets it
    WinHttpHandle m_request;
};
