#include "Libs/Processes/Core/src/Truncation.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace {

// Single precision is what readers of these files know: large sizes are rounded to 24 significant bits.
uint64_t Half(uint64_t value) {
    return static_cast<uint64_t>(static_cast<float>(value) * 0.5F);
}

std::string Banner(uint64_t size, uint64_t limit) {
    return "\n\n<<<<<<<<<<  truncated file size from " + std::to_string(size) + " to " +
           std::to_string(limit) + " during bug submission >>>>>>>>>>\n\n";
}

} // namespace

TruncationCut ComputeTruncationCut(uint64_t size, uint64_t limit) {
    const uint64_t halfExcess = Half(size - limit);
    const uint64_t halfSize = Half(size); // rounding is monotone: never less than halfExcess
    const uint64_t rest = size - halfSize;
    return {halfSize - halfExcess, halfSize + std::min(halfExcess, rest)};
}

void TruncateAroundMiddle(std::vector<uint8_t>& bytes, uint64_t limit) {
    const uint64_t size = bytes.size();
    if (limit >= size) {
        return;
    }
    const TruncationCut cut = ComputeTruncationCut(size, limit);
    const std::string banner = Banner(size, limit);

    // The tail moves once, to behind the banner.
    const auto begin = static_cast<std::size_t>(cut.begin);
    const std::size_t tailTarget = begin + banner.size();
    const std::size_t newSize = tailTarget + static_cast<std::size_t>(size - cut.end);
    if (newSize > bytes.size()) {
        bytes.resize(newSize);
    }
    const auto at = [&bytes](uint64_t offset) { return bytes.begin() + static_cast<std::ptrdiff_t>(offset); };
    if (tailTarget < cut.end) {
        std::copy(at(cut.end), at(size), at(tailTarget));
    } else {
        std::copy_backward(at(cut.end), at(size), at(newSize));
    }
    std::copy(banner.begin(), banner.end(), at(begin));
    bytes.resize(newSize);
}
