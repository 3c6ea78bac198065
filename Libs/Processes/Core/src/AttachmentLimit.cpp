#include "Libs/Processes/Core/src/AttachmentLimit.h"

#include <algorithm>

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

TruncationCut ComputeTruncationCut(uint64_t size, uint64_t limit) {
    const uint64_t halfExcess = Half(size - limit);
    const uint64_t halfSize = Half(size); // rounding is monotonic: never less than halfExcess
    return {halfSize - halfExcess, halfSize + std::min(halfExcess, size - halfSize)};
}

LimitedBytes::LimitedBytes(Platform::ByteSource& file, const std::vector<AttachmentLimit>& limits,
                           std::string_view name)
    : m_file(file), m_cut{file.GetSize(), file.GetSize()} {
    const uint64_t fileSize = file.GetSize();
    if (!IsAttachmentOverSizeLimit(limits, name, fileSize)) {
        return;
    }
    const uint64_t maxFileSize = FindAttachmentSizeLimit(limits, name);
    PLATFORM_ASSERT(fileSize > maxFileSize);
    if (fileSize > maxFileSize) {
        m_cut = ComputeTruncationCut(fileSize, maxFileSize);
        m_banner = Banner(fileSize, maxFileSize);
    }
}

uint64_t LimitedBytes::GetSize() const {
    return m_file.GetSize() - (m_cut.end - m_cut.begin) + m_banner.size();
}

bool LimitedBytes::ReadInside(uint64_t offset, std::span<uint8_t> buffer) {
    const uint64_t bannerEnd = m_cut.begin + m_banner.size();
    const auto upTo = [&](uint64_t end) {
        return buffer.first(static_cast<std::size_t>(std::min<uint64_t>(buffer.size(), end - offset)));
    };
    while (!buffer.empty()) {
        std::span<uint8_t> piece = buffer;
        bool isRead = true;
        if (offset < m_cut.begin) {
            piece = upTo(m_cut.begin);
            isRead = m_file.Read(offset, piece);
        } else if (offset < bannerEnd) {
            piece = upTo(bannerEnd);
            m_banner.copy(reinterpret_cast<char*>(piece.data()), piece.size(),
                          static_cast<std::size_t>(offset - m_cut.begin));
        } else {
            isRead = m_file.Read(offset - bannerEnd + m_cut.end, piece);
        }
        if (!isRead) {
            return false;
        }
        offset += piece.size();
        buffer = buffer.subspan(piece.size());
    }
    return true;
}
