#include "Libs/Processes/Core/src/SizeLimit.h"

#include <algorithm>

#include "Libs/Processes/Core/src/Truncation.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

Reflection_DefineType(AttachmentLimit, Reflection_Field(extension, "Extension"),
                      Reflection_Field(maxSize, "MaxSize"));

namespace {

bool IsFor(const AttachmentLimit& limit, std::string_view file) {
    const std::string& ending = limit.extension;
    return file.size() >= ending.size() &&
           std::equal(
               ending.begin(), ending.end(), file.end() - static_cast<std::ptrdiff_t>(ending.size()),
               [](char left, char right) { return String::LowerAscii(left) == String::LowerAscii(right); });
}

} // namespace

bool IsAttachmentOverSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file,
                               uint64_t size) {
    return std::any_of(limits.begin(), limits.end(), [&](const AttachmentLimit& limit) {
        return IsFor(limit, file) && size > limit.maxSize;
    });
}

uint64_t FindAttachmentSizeLimit(const std::vector<AttachmentLimit>& limits, std::string_view file) {
    const auto found = std::find_if(limits.begin(), limits.end(),
                                    [&](const AttachmentLimit& limit) { return IsFor(limit, file); });
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
