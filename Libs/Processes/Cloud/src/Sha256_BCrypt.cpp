#include "Libs/Processes/Cloud/src/Sha256.h"

#include <windows.h>

#include <bcrypt.h>

namespace {

class Algorithm {
public:
    explicit Algorithm(ULONG flags) {
        m_open =
            BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(&m_handle, BCRYPT_SHA256_ALGORITHM, nullptr, flags));
    }
    ~Algorithm() {
        if (m_open) {
            BCryptCloseAlgorithmProvider(m_handle, 0);
        }
    }
    Algorithm(const Algorithm&) = delete; // one handle, one owner
    Algorithm& operator=(const Algorithm&) = delete;

    // The key is empty for the plain hash.
    std::optional<Sha256::Digest> Hash(std::span<const uint8_t> key, std::span<const uint8_t> bytes) const {
        if (!m_open || bytes.size() > MAXDWORD || key.size() > MAXDWORD) {
            return std::nullopt;
        }
        BCRYPT_HASH_HANDLE hash = nullptr;
        if (!BCRYPT_SUCCESS(BCryptCreateHash(m_handle, &hash, nullptr, 0, Input(key),
                                             static_cast<ULONG>(key.size()), 0))) {
            return std::nullopt;
        }
        Sha256::Digest digest;
        const bool done =
            BCRYPT_SUCCESS(BCryptHashData(hash, Input(bytes), static_cast<ULONG>(bytes.size()), 0)) &&
            BCRYPT_SUCCESS(BCryptFinishHash(hash, digest.data(), static_cast<ULONG>(digest.size()), 0));
        BCryptDestroyHash(hash);
        return done ? std::optional(digest) : std::nullopt;
    }

private:
    // The interface takes inputs as writable and leaves them alone.
    static PUCHAR Input(std::span<const uint8_t> bytes) { return const_cast<PUCHAR>(bytes.data()); }

    BCRYPT_ALG_HANDLE m_handle = nullptr;
    bool m_open = false;
};

std::span<const uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

} // namespace

namespace Sha256 {

std::optional<Digest> HashOf(std::span<const uint8_t> bytes) {
    return Algorithm(0).Hash({}, bytes);
}

std::optional<Digest> HashOf(std::string_view text) {
    return HashOf(BytesOf(text));
}

std::optional<Digest> KeyedHashOf(std::span<const uint8_t> key, std::string_view text) {
    return Algorithm(BCRYPT_ALG_HANDLE_HMAC_FLAG).Hash(key, BytesOf(text));
}

std::string ToHex(const Digest& digest) {
    static constexpr char Digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(digest.size() * 2);
    for (const uint8_t byte : digest) {
        text += Digits[byte >> 4];
        text += Digits[byte & 15];
    }
    return text;
}

} // namespace Sha256
