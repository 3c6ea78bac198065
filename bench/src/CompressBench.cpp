// Compressing the files of a submission, against zlib alone.
#include <string>

#include "Libs/Framework/Core/src/PlatformHelpers_Deflate.h"
#include "bench/src/Bench.h"
#include "bench/src/Submission.h"
#include "bench/src/ZlibAlone.h"

namespace {

std::size_t CompressAll(const std::vector<Bench::SubmissionFile>& files) {
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

} // namespace

int main(int argc, char** argv) {
    const Bench::Options options = Bench::ReadOptions(argc, argv);
    const auto files = Bench::MakeSubmission(options.quick ? Bench::QuickSubmission : Bench::FullSubmission);
    std::size_t packed = 0;
    std::size_t packedAlone = 0;
    const Bench::Best best = Bench::Interleave(
        2, Bench::CpuSeconds, [&] { packed = CompressAll(files); },
        [&] { packedAlone = Bench::DeflateAlone(files); });
    if (packed != packedAlone) {
        Bench::Fail("the two did not compress to the same size");
    }
    Bench::Report("compressing a submission (CPU)", "s", best.subject, best.bound, Bench::Goal::AtMost, 1.03);
    return 0;
}
