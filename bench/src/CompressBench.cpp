// CompressBench ROUNDS FILE...: compressing the files, against zlib alone. Processor time.
#include <windows.h>

#define ZLIB_CONST
#include <zlib.h>

#include <string>
#include <vector>

#include "Libs/Framework/Core/src/Gzip.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "bench/src/Bench.h"

namespace {

using Bytes = std::vector<uint8_t>;

double CpuSeconds() {
    const auto seconds = [](const FILETIME& time) {
        return (time.dwHighDateTime * 4294967296.0 + time.dwLowDateTime) * 1e-7;
    };
    FILETIME created = {};
    FILETIME ended = {};
    FILETIME kernel = {};
    FILETIME user = {};
    if (!GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user)) {
        Bench::Fail("the system gives no processor time");
    }
    return seconds(kernel) + seconds(user);
}

std::size_t Compress(const Bytes& bytes) {
    Platform::MemorySource source(bytes);
    std::size_t packed = 0;
    const auto count = [&](std::span<const uint8_t> piece) {
        packed += piece.size();
        return Platform::Success;
    };
    if (!PlatformHelpers::Compress(source, count)) {
        Bench::Fail("Compress refused a file");
    }
    return packed;
}

// The least that zlib can be asked to do with the packager's settings: the file in one piece, and the output
// thrown away.
std::size_t DeflateAlone(const Bytes& bytes) {
    static uint8_t room[std::size_t{1} << 20];
    z_stream stream = {};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, 31, 9, Z_DEFAULT_STRATEGY) != Z_OK) {
        Bench::Fail("zlib does not start");
    }
    stream.next_in = bytes.data();
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::size_t packed = 0;
    int result = Z_OK;
    while (result == Z_OK) {
        stream.next_out = room;
        stream.avail_out = sizeof(room);
        result = deflate(&stream, Z_FINISH);
        packed += sizeof(room) - stream.avail_out;
    }
    deflateEnd(&stream);
    return result == Z_STREAM_END ? packed : 0;
}

std::size_t OfAll(const std::vector<Bytes>& files, std::size_t (*pack)(const Bytes&)) {
    std::size_t packed = 0;
    for (const Bytes& file : files) {
        packed += pack(file);
    }
    return packed;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<Bytes> files;
    for (int i = 2; i < argc; ++i) {
        if (Platform::ReadWholeFile(argv[i], files.emplace_back()) != Platform::ReadOutcome::Done) {
            Bench::Fail(argv[i]);
        }
    }
    std::size_t packed = 0;
    std::size_t packedAlone = 0;
    Bench::Compare(
        std::atoi(argv[1]), &CpuSeconds, [&] { packed = OfAll(files, &Compress); },
        [&] { packedAlone = OfAll(files, &DeflateAlone); });
    if (packed != packedAlone) {
        Bench::Fail("the two did not compress to the same size");
    }
    return 0;
}
