#include "Libs/Framework/Core/src/PlatformHelpers_Deflate.h"

#define ZLIB_CONST // the library then promises not to write to its input
#include <zlib.h>

#include <algorithm>
#include <new>
#include <stdexcept>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace PlatformHelpers {

namespace {

constexpr std::size_t ChunkSize = 131072;
constexpr int GzipWindowBits = 31; // a window of 32 KB, with gzip's header and trailer
constexpr int MemoryLevel = 9;
constexpr int FileSystemNtfs =
    11; // what a gzip header of a Windows file names; zlib's own default differs by system

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

    // Appends everything that zlib has to say about this chunk, and returns zlib's last answer.
    int DeflateChunk(std::span<const uint8_t> chunk, int flush, std::vector<uint8_t>& output) {
        uint8_t produced[ChunkSize];
        m_stream.next_in = chunk.data();
        m_stream.avail_in = static_cast<uInt>(chunk.size());
        int ret = Z_OK;
        do {
            m_stream.next_out = produced;
            m_stream.avail_out = static_cast<uInt>(ChunkSize);
            ret = deflate(&m_stream, flush);
            PLATFORM_ASSERT(ret != Z_STREAM_ERROR);
            output.insert(output.end(), produced, produced + (ChunkSize - m_stream.avail_out));
        } while (m_stream.avail_out == 0 && !IsFailure(ret));
        return ret;
    }

    static bool IsFailure(int ret) { return ret == Z_NEED_DICT || ret == Z_DATA_ERROR || ret == Z_MEM_ERROR; }

private:
    z_stream m_stream = {};
    gz_header m_header = {};
    bool m_ready = false;
};

ResultCode CompressChunks(std::span<const uint8_t> input, std::vector<uint8_t>& output) {
    // What does not compress grows by some bytes a block; without room for them the vector would double.
    output.reserve(input.size() + input.size() / 1024 + 64);
    GzipStream stream;
    if (!stream.Initialize()) {
        return "Failed to initialize zlib!";
    }
    int ret = Z_OK;
    while (!input.empty() && ret != Z_STREAM_END) {
        const auto chunk = input.first(std::min(input.size(), ChunkSize));
        input = input.subspan(chunk.size());
        ret = stream.DeflateChunk(chunk, input.empty() ? Z_FINISH : Z_NO_FLUSH, output);
        if (GzipStream::IsFailure(ret)) {
            return "Failed to deflate chunk!";
        }
    }
    if (ret != Z_STREAM_END) {
        return "Failed to deflate file";
    }
    return Platform::Success;
}

} // namespace

ResultCode Compress(std::span<const uint8_t> input, std::vector<uint8_t>& output) {
    try {
        return CompressChunks(input, output);
    } catch (const std::bad_alloc&) {
        return "Failed to deflate chunk!";
    } catch (const std::length_error&) {
        return "Failed to deflate chunk!";
    }
}

} // namespace PlatformHelpers
