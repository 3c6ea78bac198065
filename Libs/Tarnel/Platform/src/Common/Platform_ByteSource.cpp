#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"

namespace Platform {

bool ByteSource::Read(uint64_t offset, std::span<uint8_t> buffer) {
    const uint64_t size = GetSize();
    const bool isRead = offset <= size && buffer.size() <= size - offset && ReadInside(offset, buffer);
    m_hasFailed = m_hasFailed || !isRead;
    return isRead;
}

bool MemorySource::ReadInside(uint64_t offset, std::span<uint8_t> buffer) {
    std::ranges::copy(m_bytes.subspan(static_cast<std::size_t>(offset), buffer.size()), buffer.begin());
    return true;
}

bool FileSource::ReadInside(uint64_t offset, std::span<uint8_t> buffer) {
    std::size_t count = 0;
    return m_file.Read(offset, buffer, count) == NoError && count == buffer.size();
}

} // namespace Platform
