// MD5 of a buffer against OpenSSL's, on the one thread that runs both.
#include <openssl/evp.h>

#include <string>
#include <vector>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "bench/src/Bench.h"

namespace {

// In a core's own cache, so that the memory of the machine plays no part.
constexpr std::size_t Size = std::size_t{256} << 10;

std::string OpenSslMd5(const std::vector<uint8_t>& bytes) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_md5(), nullptr) != 1 || length != 16) {
        Bench::Fail("OpenSSL does not do MD5");
    }
    char text[Crypto::MD5TextSize];
    Crypto::MD5ToText(std::span<const uint8_t, 16>(digest, 16), text, sizeof text);
    return text;
}

} // namespace

int main(int argc, char** argv) {
    const Bench::Options options = Bench::ReadOptions(argc, argv);
    std::vector<uint8_t> bytes(Size);
    for (std::size_t i = 0; i < Size; ++i) {
        bytes[i] = static_cast<uint8_t>(i * 131 >> 3);
    }
    const int repeats = options.quick ? 20 : 400; // 100 MiB
    std::string ours;
    std::string theirs;
    const Bench::Best best = Bench::Interleave(
        options.quick ? 3 : 15, Bench::CpuSeconds,
        [&] {
            for (int i = 0; i < repeats; ++i) {
                ours = Crypto::MD5OfBytes(bytes);
            }
        },
        [&] {
            for (int i = 0; i < repeats; ++i) {
                theirs = OpenSslMd5(bytes);
            }
        });
    if (ours != theirs) {
        Bench::Fail("the two digests differ");
    }
    const double mebibytes = static_cast<double>(Size) * repeats / (1 << 20);
    Bench::Report("MD5 throughput", "MiB/s", mebibytes / best.subject, mebibytes / best.bound,
                  Bench::Goal::AtLeast, 0.95);
    return 0;
}
