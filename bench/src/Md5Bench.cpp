// Md5Bench ROUNDS: 100 MiB of MD5 against OpenSSL's, over a buffer in the processor's cache. Processor time.
#include <openssl/evp.h>

#include <ctime>
#include <vector>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "bench/src/Bench.h"

int main(int, char** argv) {
    constexpr int Repeats = 400;
    std::vector<uint8_t> bytes(std::size_t{256} << 10);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<uint8_t>(i * 131 >> 3);
    }
    Crypto::MD5Digest ours = {};
    Crypto::MD5Digest theirs = {};
    const auto cpuSeconds = [] { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; };
    Bench::Compare(
        std::atoi(argv[1]), cpuSeconds,
        [&] {
            for (int i = 0; i < Repeats; ++i) {
                ours = Crypto::MD5DigestOf(bytes);
            }
        },
        [&] {
            for (int i = 0; i < Repeats; ++i) {
                EVP_Digest(bytes.data(), bytes.size(), theirs.data(), nullptr, EVP_md5(), nullptr);
            }
        });
    if (ours != theirs) {
        Bench::Fail("the two digests differ");
    }
    return 0;
}
