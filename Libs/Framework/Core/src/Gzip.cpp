#include "Libs/Framework/Core/src/Gzip.h"

#define ZLIB_CONST // the library then promises not to write to its input
#include <zlib.h>

#include <algorithm>
#include <cstring>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace PlatformHelpers {

namespace {

constexpr std::size_t DeflateChunk = 131072;
constexpr std::size_t InflateChunk = 65536;
constexpr int GzipWindowBits = 31; // gzip alone, with the largest window, of 32 KB
constexpr int MemoryLevel = 9;
// What a gzip header of a Windows file names; zlib's own default differs by system.
constexpr int FileSystemNtfs = 11;

// One zlib stream that writes gzip.
class GzipStream {
public:
    GzipStream() = default;
    ~GzipStream() {
        if (m_ready) {
            deflateEnd(&m_stream);
        }
    }
    GzipStream(const GzipStream&) = delete; // zlib keeps the stream's address
    GzipStream& operator=(const GzipStream&) = delete;

    bool Initialize() {
        m_ready = deflateInit2(&m_stream, Z_BEST_COMPRESSION, Z_DEFLATED, GzipWindowBits, MemoryLevel,
                               Z_DEFAULT_STRATEGY) == Z_OK;
        m_header.os = FileSystemNtfs;
        return m_ready && deflateSetHeader(&m_stream, &m_header) == Z_OK;
    }

    // Gives sink everything that zlib makes of this chunk.
    ResultCode Deflate(std::span<const uint8_t> chunk, int flush, const GzipSink& sink) {
        uint8_t produced[DeflateChunk];
        m_stream.next_in = chunk.data();
        m_stream.avail_in = static_cast<uInt>(chunk.size());
        do {
            m_stream.next_out = produced;
            m_stream.avail_out = static_cast<uInt>(DeflateChunk);
            const int ret = deflate(&m_stream, flush);
            PLATFORM_ASSERT(ret != Z_STREAM_ERROR);
            if (ret == Z_NEED_DICT || ret == Z_DATA_ERROR || ret == Z_MEM_ERROR) {
                return "Failed to deflate chunk!";
            }
            m_hasEnded = ret == Z_STREAM_END;
            if (const std::size_t count = DeflateChunk - m_stream.avail_out; count > 0) {
                RETURN_IF_FAILED(sink({produced, count}));
            }
        } while (m_stream.avail_out == 0);
        return Platform::Success;
    }

    bool HasEnded() const { return m_hasEnded; }

private:
    z_stream m_stream = {};
    gz_header m_header = {};
    bool m_ready = false;
    bool m_hasEnded = false;
};

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
        m_stream.next_in = input.data();
        m_stream.avail_in = static_cast<uInt>(input.size());
        m_stream.next_out = m_produced;
        m_stream.avail_out = static_cast<uInt>(InflateChunk);
        const int outcome = inflate(&m_stream, Z_NO_FLUSH);
        input = input.last(m_stream.avail_in);
        piece = std::span<const uint8_t>(m_produced, InflateChunk - m_stream.avail_out);
        return outcome;
    }

private:
    z_stream m_stream = {};
    uint8_t m_produced[InflateChunk];
    bool m_ready = false;
};

// The input that zlib has not taken yet. Reads on before it runs out.
class GunzipInput {
public:
    GunzipInput(Platform::ByteSource& source, uint64_t offset, uint64_t size)
        : m_source(source), m_next(offset), m_left(size) {}

    // Afterwards there are as many bytes as tell gzip from other files, unless the input ends before. False
    // if it can't be read.
    bool Fill() {
        if (m_rest.size() >= 2 || m_left == 0) {
            return true;
        }
        std::memmove(m_room, m_rest.data(), m_rest.size());
        const auto count =
            static_cast<std::size_t>(std::min(m_left, uint64_t{sizeof(m_room) - m_rest.size()}));
        if (!m_source.Read(m_next, {m_room + m_rest.size(), count})) {
            return false;
        }
        m_rest = {m_room, m_rest.size() + count};
        m_next += count;
        m_left -= count;
        return true;
    }

    std::span<const uint8_t>& Rest() { return m_rest; }
    uint64_t SizeLeft() const { return m_rest.size() + m_left; }
    bool StartsGzip() const { return m_rest.size() >= 2 && m_rest[0] == 0x1F && m_rest[1] == 0x8B; }

private:
    Platform::ByteSource& m_source;
    uint64_t m_next;
    uint64_t m_left;
    uint8_t m_room[InflateChunk];
    std::span<const uint8_t> m_rest{m_room, 0};
};

// zlib's answer as a result. Z_BUF_ERROR, no progress at all, means that the input has ended.
ResultCode ResultOf(int outcome) {
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

ResultCode Compress(Platform::ByteSource& input, const GzipSink& sink) {
    GzipStream stream;
    if (!stream.Initialize()) {
        return "Failed to initialize zlib!";
    }
    uint8_t room[DeflateChunk];
    const uint64_t size = input.GetSize();
    for (uint64_t done = 0; done < size && !stream.HasEnded();) {
        const auto chunk =
            std::span(room).first(static_cast<std::size_t>(std::min(size - done, uint64_t{DeflateChunk})));
        if (!input.Read(done, chunk)) {
            return Platform::ReadFailure;
        }
        done += chunk.size();
        RETURN_IF_FAILED(stream.Deflate(chunk, done == size ? Z_FINISH : Z_NO_FLUSH, sink));
    }
    return stream.HasEnded() ? Platform::Success : ResultCode("Failed to deflate file");
}

ResultCode Decompress(Platform::ByteSource& input, uint64_t offset, uint64_t size, uint64_t limit,
                      const GzipSink& sink, InflateProgress& progress) {
    progress = {};
    GunzipInput rest(input, offset, size);
    GunzipStream stream;
    if (!stream.IsReady()) {
        return "Out of memory";
    }
    int outcome = Z_STREAM_END;
    while (outcome != Z_STREAM_END || progress.consumed == 0 || rest.SizeLeft() > 0) {
        if (!rest.Fill()) {
            return Platform::ReadFailure;
        }
        if (outcome == Z_STREAM_END && (!rest.StartsGzip() || !stream.Restart())) {
            return progress.consumed == 0 ? ResultCode("Not a gzip stream")
                                          : "Other bytes follow the gzip stream";
        }
        std::span<const uint8_t> piece;
        outcome = stream.Inflate(rest.Rest(), piece);
        progress.consumed = size - rest.SizeLeft();
        RETURN_IF_FAILED(ResultOf(outcome));
        if (piece.size() > limit - progress.produced) {
            return "The unpacked content is over the limit";
        }
        progress.produced += piece.size();
        if (!piece.empty()) {
            RETURN_IF_FAILED(sink(piece));
        }
    }
    return Platform::Success;
}

} // namespace PlatformHelpers
