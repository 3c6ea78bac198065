#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "bench/src/Submission.h"

namespace Bench {

// The least that zlib can be asked to do with the packager's settings: each file in one piece, and what comes
// out thrown away. Gives the bytes that came out. Ends the program when zlib does not do it.
std::size_t DeflateAlone(std::span<const SubmissionFile> files);

} // namespace Bench
