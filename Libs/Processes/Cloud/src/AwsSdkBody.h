#pragma once

#include <algorithm>
#include <cstdint>
#include <istream>
#include <streambuf>

#include <aws/core/utils/memory/stl/AWSStreamFwd.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"

// A body in pieces as the stream that the AWS SDK reads, measures by seeking, and reads again to sign it.
// Reads only; a source that can't be read ends too early. On the upload's thread; the source outlives it.
class AwsSdkBody final : public Aws::IOStream {
public:
    explicit AwsSdkBody(Platform::ByteSource& source) : Aws::IOStream(nullptr), m_buffer(source) {
        rdbuf(&m_buffer);
    }

private:
    class Buffer final : public std::streambuf {
    public:
        explicit Buffer(Platform::ByteSource& source) : m_source(source) {}

    protected:
        int_type underflow() override {
            const uint64_t left = m_source.GetSize() - m_next;
            const auto count = static_cast<std::size_t>(std::min<uint64_t>(left, sizeof(m_room)));
            if (count == 0 || !m_source.Read(m_next, {reinterpret_cast<uint8_t*>(m_room), count})) {
                return traits_type::eof();
            }
            m_next += count;
            setg(m_room, m_room, m_room + count);
            return traits_type::to_int_type(m_room[0]);
        }

        pos_type seekoff(off_type offset, std::ios::seekdir from, std::ios::openmode) override {
            const uint64_t here = m_next - static_cast<uint64_t>(egptr() - gptr());
            const uint64_t base = from == std::ios::beg   ? 0
                                  : from == std::ios::cur ? here
                                                          : m_source.GetSize();
            const uint64_t place = base + static_cast<uint64_t>(offset); // below 0 it is beyond every end
            if (place > m_source.GetSize()) {
                return pos_type(off_type(-1));
            }
            m_next = place;
            setg(m_room, m_room, m_room);
            return pos_type(static_cast<off_type>(place));
        }

        pos_type seekpos(pos_type place, std::ios::openmode mode) override {
            return seekoff(off_type(place), std::ios::beg, mode);
        }

    private:
        Platform::ByteSource& m_source;
        uint64_t m_next = 0; // the place in the source of what comes after the buffered bytes
        char m_room[std::size_t{64} << 10];
    };

    Buffer m_buffer;
};
