// Compressing the files of a submission, against zlib alone.
#define ZLIB_CONST
#include <zlib.h>

#include <string>

#include "Libs/Framework/Core/src/PlatformHelpers_Deflate.h"
#include "bench/src/Bench.h"
#include "bench/src/Submission.h"

namespace {

using Files = std::vector<Bench::SubmissionFile>;

std::size_t CompressAll(const Files& files) {
    std::size_t packed = 0;
    for (const Bench::SubmissionFile& file : files) {
        std::vector<uint8_t> output;
        if (!PlatformHelpers::Compress(file.bytes, output)) {
            Bench::Fail("Compress refused " + file.name);
        }
        packed += output.size();
    }
    return packed;
}

// The least that zlib can be asked to do: a file in one piece, and what comes out thrown away.
std::size_t DeflateAlone(const std::vector<uint8_t>& bytes) {
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
        stream.avail_out = sizeof room;
        result = deflate(&stream, Z_FINISH);
        packed += sizeof room - stream.avail_out;
    }
    deflateEnd(&stream);
    if (result != Z_STREAM_END) {
        Bench::Fail("zlib does not finish");
    }
    return packed;
}

} // namespace

int main(int argc, char** argv) {
    const Bench::Options options = Bench::ReadOptions(argc, argv);
    const Files files = Bench::MakeSubmission(options.quick ? Bench::QuickSubmission : Bench::FullSubmission);
    std::size_t packed = 0;
    std::size_t packedAlone = 0;
    const Bench::Best best = Bench::Interleave(
        2, Bench::CpuSeconds, [&] { packed = CompressAll(files); },
        [&] {
            packedAlone = 0;
            for (const Bench::SubmissionFile& file : files) {
                packedAlone += DeflateAlone(file.bytes);
            }
        });
    if (packed != packedAlone) {
        Bench::Fail("the two did not compress to the same size");
    }
    Bench::Note("packed to " + std::to_string(packed) + " bytes");
    Bench::Report("compressing a submission (CPU)", "s", best.subject, best.bound, Bench::Goal::AtMost, 1.03);
    return 0;
}
