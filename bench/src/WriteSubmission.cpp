// Writes the submission that is measured, for the rows that start programs over it.
#include <string>

#include "bench/src/Bench.h"
#include "bench/src/Submission.h"

int main(int argc, char** argv) {
    const Bench::Options options = Bench::ReadOptions(argc, argv);
    Bench::WriteSubmission(options.scratch, Bench::MakeSubmission(options.quick ? Bench::QuickSubmission
                                                                                : Bench::FullSubmission));
    return 0;
}
