#include "Libs/Framework/Core/src/PlatformHelpers_Inflate.h"

#define ZLIB_CONST // the library then promises not to write to its input
#include <zlib.h>

#include <algorithm>

namespace PlatformHelpers {

namespace {

constexpr std::size_t ChunkSize = 65536;
constexpr int GzipWindowBits = 31; // gzip alone, with the largest window

// One zlib stream that reads gzip.
class GunzipStream {
public:
    GunzipStream() { m_ready = inflateInit2(&m_stream, GzipWindowBits) == Z_OK; }
    ~GunzipStream() {
        if (m_ready) {
            inflateEnd(&m_stream);
        }
    }
    GunzipStream(const GunzipStream&) = delete; // zlib keeps the stream's address
    GunzipStream& operator=(const GunzipStream&) = delete;

    bool IsReady() const { return m_ready; }
    bool Restart() { return inflateReset(&m_stream) == Z_OK; }

    // Takes from input's front what it needs and gives what came out, a part of the stream's own memory.
    int Inflate(std::span<const uint8_t>& input, std::span<const uint8_t>& piece) {
        const auto offered = static_cast<uInt>(std::min(input.size(), ChunkSize));
        m_stream.next_in = input.data();
        m_stream.avail_in = offered;
        m_stream.next_out = m_produced;
        m_stream.avail_out = static_cast<uInt>(ChunkSize);
        const int outcome = inflate(&m_stream, Z_NO_FLUSH);
        input = input.subspan(offered - m_stream.avail_in);
        piece = std::span<const uint8_t>(m_produced, ChunkSize - m_stream.avail_out);
        return outcome;
    }

private:
    z_stream m_stream = {};
    uint8_t m_produced[ChunkSize];
    bool m_ready = false;
};

bool StartsGzip(std::span<const uint8_t> input) {
    return input.size() >= 2 && input[0] == 0x1F && input[1] == 0x8B;
}

// What zlib's answer means when it says that the stream goes on: an answer without any progress is the end of
// the input.
ResultCode Judge(int outcome) {
    switch (outcome) {
    case Z_OK:
    case Z_STREAM_END:
        return Platform::Success;
    case Z_BUF_ERROR:
        return "The gzip stream ends too early";
    case Z_MEM_ERROR:
        return "Out of memory";
    default:
        return "The gzip stream is damaged";
    }
}

} // namespace

ResultCode Decompress(std::span<const uint8_t> input, uint64_t limit, const InflateSink& sink,
                      InflateProgress& progress) {
    progress = {};
    if (!StartsGzip(input)) {
        return "Not a gzip stream";
    }
    GunzipStream stream;
    if (!stream.IsReady()) {
        return "Out of memory";
    }
    const std::size_t size = input.size();
    for (;;) {
        std::span<const uint8_t> piece;
        const int outcome = stream.Inflate(input, piece);
        progress.consumed = size - input.size();
        if (const ResultCode result = Judge(outcome); !result) {
            return result;
        }
        if (piece.size() > limit - progress.produced) {
            return "The unpacked content is over the limit";
        }
        progress.produced += piece.size();
        if (!piece.empty() && !sink(piece)) {
            return "The unpacked content was refused";
        }
        if (outcome == Z_STREAM_END) {
            if (input.empty()) {
                return Platform::Success;
            }
            if (!StartsGzip(input) || !stream.Restart()) {
                return "Other bytes follow the gzip stream";
            }
        }
    }
}

} // namespace PlatformHelpers
