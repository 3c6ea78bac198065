#include "Libs/Processes/Core/src/AttachmentLimit.h"

#include <algorithm>
#include <cstddef>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

Reflection_DefineType(AttachmentLimit, Reflection_Field(extension, "Extension"),
                      Reflection_Field(maxSize, "MaxSize"));

namespace {

bool IsFor(const AttachmentLimit& limit, std::string_view file) {
    return String::LowerAscii(file).ends_with(String::LowerAscii(limit.extension));
}

// Single precision is what readers of these files know: large sizes are rounded to 24 significant bits.
uint64_t Half(uint64_t value) {
    return static_cast<uint64_t>(static_cast<float>(value) * 0.5F);
}

std::string Banner(uint64_t size, uint64_t limit) {
    return "\n\n<<<<<<<<<<  truncated file size from " + std::to_string(size) + " to " +
           std::to_string(limit) + " during bug submission >>>>>>>>>>\n\n";
}

} // namespace

bool IsAttachmentOverSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file,
                               uint64_t size) {
    return std::ranges::any_of(
        limits, [&](const AttachmentLimit& limit) { return IsFor(limit, file) && size > limit.maxSize; });
}

uint64_t FindAttachmentSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file) {
    const auto found =
        std::ranges::find_if(limits, [&](const AttachmentLimit& limit) { return IsFor(limit, file); });
    PLATFORM_ASSERT_TEXT(found != limits.end(),
                         "It is expected that this function is not called without first "
                         "calling IsAttachmentOverSizeLimit to ensure there is a limit");
    return found == limits.end() ? 0 : found->maxSize;
}

void TruncateToSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file,
                         std::vector<uint8_t>& attBytes) {
    PLATFORM_ASSERT_TEXT(IsAttachmentOverSizeLimit(limits, file, attBytes.size()),
                         "IsAttachmentOverSizeLimit(file, attBytes.size())");
    const uint64_t fileSize = attBytes.size();
    const uint64_t maxFileSize = FindAttachmentSizeLimit(limits, file);
    PLATFORM_ASSERT(fileSize > maxFileSize);
    TruncateAroundMiddle(attBytes, maxFileSize);
}

TruncationCut ComputeTruncationCut(uint64_t size, uint64_t limit) {
    const uint64_t halfExcess = Half(size - limit);
    const uint64_t halfSize = Half(size); // rounding is monotonic: never less than halfExcess
    return {halfSize - halfExcess, halfSize + std::min(halfExcess, size - halfSize)};
}

void TruncateAroundMiddle(std::vector<uint8_t>& bytes, uint64_t limit) {
    const uint64_t size = bytes.size();
    if (limit >= size) {
        return;
    }
    const TruncationCut cut = ComputeTruncationCut(size, limit);
    const std::string banner = Banner(size, limit);
    const auto at = [&](uint64_t offset) { return bytes.begin() + static_cast<std::ptrdiff_t>(offset); };
    // The banner overwrites what it can of the stretch, so that the tail moves once.
    const std::size_t fitting = std::min(banner.size(), static_cast<std::size_t>(cut.end - cut.begin));
    std::copy_n(banner.begin(), fitting, at(cut.begin));
    if (fitting < banner.size()) {
        bytes.insert(at(cut.end), banner.begin() + static_cast<std::ptrdiff_t>(fitting), banner.end());
    } else {
        bytes.erase(at(cut.begin + fitting), at(cut.end));
    }
}
