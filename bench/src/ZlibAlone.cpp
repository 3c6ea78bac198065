#include "bench/src/ZlibAlone.h"

#define ZLIB_CONST
#include <zlib.h>

#include "bench/src/Bench.h"

namespace Bench {

namespace {

std::size_t DeflateFile(std::span<const uint8_t> bytes) {
    static uint8_t room[std::size_t{1} << 20];
    z_stream stream = {};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, 31, 9, Z_DEFAULT_STRATEGY) != Z_OK) {
        Fail("zlib does not start");
    }
    stream.next_in = bytes.data();
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::size_t packed = 0;
    int result = Z_OK;
    while (result == Z_OK) {
        stream.next_out = room;
        stream.avail_out = sizeof room;
        result = deflate(&stream, Z_FINISH);
        packed += sizeof room - stream.avail_out;
    }
    deflateEnd(&stream);
    if (result != Z_STREAM_END) {
        Fail("zlib does not finish");
    }
    return packed;
}

} // namespace

std::size_t DeflateAlone(std::span<const SubmissionFile> files) {
    std::size_t packed = 0;
    for (const SubmissionFile& file : files) {
        packed += DeflateFile(file.bytes);
    }
    return packed;
}

} // namespace Bench
