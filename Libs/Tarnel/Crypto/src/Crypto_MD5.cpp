#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

#include <algorithm>
#include <cstring>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5Block.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace Crypto {

namespace {

constexpr std::size_t LengthOffset = MD5::BlockSize - 8; // the padding ends in the length as 64 bits

void StoreLittleEndian(const uint32_t* words, std::size_t count, uint8_t* bytes) {
    for (std::size_t i = 0; i < count * 4; ++i) {
        bytes[i] = static_cast<uint8_t>(words[i / 4] >> (8 * (i % 4)));
    }
}

// The compiler must not drop the clearing of memory that nobody reads again.
void Wipe(void* data, std::size_t size) {
    auto* bytes = static_cast<volatile uint8_t*>(data);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = 0;
    }
}

} // namespace

void MD5::Start() {
    m_state[0] = 0x67452301;
    m_state[1] = 0xEFCDAB89;
    m_state[2] = 0x98BADCFE;
    m_state[3] = 0x10325476;
    m_bitCount[0] = m_bitCount[1] = 0;
    std::memset(m_buffer, 0, sizeof m_buffer);
    std::memset(m_digest, 0, sizeof m_digest);
    m_finished = false;
}

void MD5::Update(const void* data, uint32_t length) {
    if (m_finished || length == 0) {
        return;
    }
    const auto* bytes = static_cast<const uint8_t*>(data);
    const std::size_t pending = (m_bitCount[0] / 8) % BlockSize;
    const uint32_t lowBits = length << 3;
    m_bitCount[0] += lowBits;
    m_bitCount[1] += (length >> 29) + (m_bitCount[0] < lowBits ? 1 : 0);

    if (pending != 0) {
        const std::size_t taken = std::min<std::size_t>(length, BlockSize - pending);
        std::memcpy(m_buffer + pending, bytes, taken);
        if (pending + taken < BlockSize) {
            return;
        }
        MD5Blocks(m_state, m_buffer, 1);
        bytes += taken;
        length -= static_cast<uint32_t>(taken);
    }
    MD5Blocks(m_state, bytes, length / BlockSize);
    std::memcpy(m_buffer, bytes + (length - length % BlockSize), length % BlockSize);
}

void MD5::Finish() {
    if (m_finished) {
        return;
    }
    std::size_t pending = (m_bitCount[0] / 8) % BlockSize;
    m_buffer[pending++] = 0x80;
    if (pending > LengthOffset) {
        std::memset(m_buffer + pending, 0, BlockSize - pending);
        MD5Blocks(m_state, m_buffer, 1);
        pending = 0;
    }
    std::memset(m_buffer + pending, 0, LengthOffset - pending);
    StoreLittleEndian(m_bitCount, 2, m_buffer + LengthOffset);
    MD5Blocks(m_state, m_buffer, 1);

    StoreLittleEndian(m_state, 4, m_digest);
    m_finished = true;
    Wipe(m_state, sizeof m_state);
    Wipe(m_buffer, sizeof m_buffer);
}

void MD5ToText(std::span<const uint8_t, MD5::DigestSize> digest, char* out_buffer,
               std::size_t out_buffer_size) {
    PLATFORM_ASSERT(out_buffer_size >= 33);
    if (out_buffer_size == 0) {
        return;
    }
    static constexpr char Digits[] = "0123456789abcdef";
    const std::size_t room = std::min(out_buffer_size, MD5TextSize);
    std::memset(out_buffer, 0, room);
    for (std::size_t i = 0; i + 1 < room; ++i) {
        const unsigned value = digest[i / 2];
        out_buffer[i] = Digits[i % 2 == 0 ? value >> 4 : value & 15];
    }
}

void MD5OfBuffer(const void* data, uint32_t length, char* out_buffer, std::size_t out_buffer_size) {
    MD5 md5;
    md5.Update(data, length);
    md5.Finish();
    MD5ToText(md5.Digest(), out_buffer, out_buffer_size);
}

std::string MD5OfBytes(std::span<const uint8_t> bytes) {
    constexpr std::size_t Piece = std::size_t{1} << 20; // Update counts in 32 bits
    MD5 md5;
    while (!bytes.empty()) {
        const auto piece = bytes.first(std::min(bytes.size(), Piece));
        md5.Update(piece.data(), static_cast<uint32_t>(piece.size()));
        bytes = bytes.subspan(piece.size());
    }
    md5.Finish();
    char text[MD5TextSize];
    MD5ToText(md5.Digest(), text, sizeof text);
    return text;
}

} // namespace Crypto
