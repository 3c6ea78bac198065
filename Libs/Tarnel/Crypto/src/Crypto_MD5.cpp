#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace Crypto {

namespace {

// Each of the 64 steps waits for the result of the one before it (b here), so the speed is the number of
// operations between b coming in and b going out. The four functions are therefore written so that everything
// that does not need b is computed first. The steps are unrolled by templates that are called once each, so
// that they become one straight run of instructions.

constexpr uint32_t Sines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr int Shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

constexpr std::size_t WordOfStep(std::size_t step) {
    constexpr std::size_t Factor[4] = {1, 5, 3, 7};
    constexpr std::size_t Offset[4] = {0, 1, 5, 0};
    return (step * Factor[step / 16] + Offset[step / 16]) % 16;
}

uint32_t LoadWord(const uint8_t* bytes) {
    uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    if constexpr (std::endian::native == std::endian::big) {
        word = (word >> 24) | ((word >> 8) & 0xff00) | ((word << 8) & 0xff0000) | (word << 24);
    }
    return word;
}

template <std::size_t Step>
void OneStep(uint32_t& a, uint32_t b, uint32_t c, uint32_t d, const uint8_t* block) {
    a += LoadWord(block + 4 * WordOfStep(Step)) + Sines[Step];
    if constexpr (Step < 16) {
        a += d ^ (b & (c ^ d)); // (b & c) | (~b & d)
    } else if constexpr (Step < 32) {
        a += c & ~d; // (b & d) | (c & ~d): no bit is in both halves, so they may be added one by one
        a += b & d;
    } else if constexpr (Step < 48) {
        a += b ^ (c ^ d);
    } else {
        a += c ^ (b | ~d);
    }
    a = std::rotl(a, Shifts[Step / 16][Step % 4]) + b;
}

template <std::size_t Step>
void FourSteps(uint32_t& a, uint32_t& b, uint32_t& c, uint32_t& d, const uint8_t* block) {
    OneStep<Step>(a, b, c, d, block);
    OneStep<Step + 1>(d, a, b, c, block);
    OneStep<Step + 2>(c, d, a, b, block);
    OneStep<Step + 3>(b, c, d, a, block);
    if constexpr (Step + 4 < 64) {
        FourSteps<Step + 4>(a, b, c, d, block);
    }
}

// Compresses count blocks of 64 bytes, read where they lie; no alignment is needed.
void MD5Blocks(uint32_t (&state)[4], const uint8_t* data, std::size_t count) {
    uint32_t a = state[0];
    uint32_t b = state[1];
    uint32_t c = state[2];
    uint32_t d = state[3];
    for (; count != 0; --count, data += 64) {
        const uint32_t before[4] = {a, b, c, d};
        FourSteps<0>(a, b, c, d, data);
        a += before[0];
        b += before[1];
        c += before[2];
        d += before[3];
    }
    state[0] = a;
    state[1] = b;
    state[2] = c;
    state[3] = d;
}

constexpr std::size_t LengthOffset = MD5::BlockSize - 8; // the padding ends in the length as 64 bits

void StoreLittleEndian(const uint32_t* words, std::size_t count, uint8_t* bytes) {
    for (std::size_t i = 0; i < count * 4; ++i) {
        bytes[i] = static_cast<uint8_t>(words[i / 4] >> (8 * (i % 4)));
    }
}

// The compiler must not drop the clearing of memory that is not read again.
void Wipe(void* data, std::size_t size) {
    auto* bytes = static_cast<volatile uint8_t*>(data);
    std::fill(bytes, bytes + size, uint8_t{0});
}

} // namespace

void MD5::Start() {
    m_state[0] = 0x67452301;
    m_state[1] = 0xEFCDAB89;
    m_state[2] = 0x98BADCFE;
    m_state[3] = 0x10325476;
    m_bitCount[0] = m_bitCount[1] = 0;
    std::memset(m_buffer, 0, sizeof(m_buffer));
    std::memset(m_digest, 0, sizeof(m_digest));
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

void MD5::Update(std::span<const uint8_t> bytes) {
    constexpr std::size_t Piece = std::size_t{1} << 30; // the length has 32 bits
    for (; !bytes.empty(); bytes = bytes.subspan(std::min(bytes.size(), Piece))) {
        Update(bytes.data(), static_cast<uint32_t>(std::min(bytes.size(), Piece)));
    }
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
    Wipe(m_state, sizeof(m_state));
    Wipe(m_buffer, sizeof(m_buffer));
}

std::string ToHex(std::span<const uint8_t> bytes) {
    static constexpr char Digits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        text += Digits[byte >> 4];
        text += Digits[byte & 15];
    }
    return text;
}

void MD5ToText(std::span<const uint8_t, MD5::DigestSize> digest, char* out_buffer,
               std::size_t out_buffer_size) {
    PLATFORM_ASSERT(out_buffer_size >= 33);
    if (out_buffer_size == 0) {
        return;
    }
    const std::size_t room = std::min(out_buffer_size, MD5TextSize);
    std::memset(out_buffer, 0, room);
    ToHex(digest).copy(out_buffer, room - 1);
}

void MD5OfBuffer(const void* data, uint32_t length, char* out_buffer, std::size_t out_buffer_size) {
    MD5 md5;
    md5.Update(data, length);
    md5.Finish();
    MD5ToText(md5.Digest(), out_buffer, out_buffer_size);
}

std::string DigestText(MD5 md5) {
    md5.Finish();
    return ToHex(md5.Digest());
}

} // namespace Crypto
