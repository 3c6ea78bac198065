#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

// MD5 (RFC 1321) and its lower-case hexadecimal form. It names and checks packages; it protects nothing
// against an attacker.
namespace Crypto {

// One digest in the making: any number of Updates, Finish, then Digest. Start begins again. Plain data: a
// copy continues on its own. One thread at a time.
class MD5 {
public:
    static constexpr std::size_t DigestSize = 16;
    static constexpr std::size_t BlockSize = 64;

    MD5() { Start(); }

    void Start();

    // Does nothing after Finish.
    void Update(const void* data, uint32_t length);
    void Update(std::span<const uint8_t> bytes);

    // Wipes everything but the digest.
    void Finish();

    // All zero until Finish.
    std::span<const uint8_t, DigestSize> Digest() const { return m_digest; }

private:
    uint32_t m_state[4];
    uint32_t m_bitCount[2]; // low word, high word
    uint8_t m_buffer[BlockSize];
    uint8_t m_digest[DigestSize];
    bool m_finished;
};

// Two lower-case digits for each byte.
std::string ToHex(std::span<const uint8_t> bytes);

// Room for 32 digits and the terminator.
inline constexpr std::size_t MD5TextSize = 33;

// Writes 32 lower-case digits and a terminator. A smaller buffer is a programming error; it gets as many
// digits as fit, terminated.
void MD5ToText(std::span<const uint8_t, MD5::DigestSize> digest, char* out_buffer,
               std::size_t out_buffer_size);

// The text form for data of less than 4 GiB; out_buffer as for MD5ToText.
void MD5OfBuffer(const void* data, uint32_t length, char* out_buffer, std::size_t out_buffer_size);

// The text form for all that md5 was given so far.
std::string DigestText(MD5 md5);

} // namespace Crypto
