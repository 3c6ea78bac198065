// Prints the processor time that the zlib of this build takes over the submission, all by itself.
#include <cstdio>

#include "bench/src/Bench.h"
#include "bench/src/ZlibAlone.h"

int main(int argc, char** argv) {
    const Bench::Options options = Bench::ReadOptions(argc, argv);
    const auto files = Bench::MakeSubmission(options.quick ? Bench::QuickSubmission : Bench::FullSubmission);
    const double start = Bench::CpuSeconds();
    static_cast<void>(Bench::DeflateAlone(files));
    std::printf("%.3f\n", Bench::CpuSeconds() - start);
    return 0;
}
