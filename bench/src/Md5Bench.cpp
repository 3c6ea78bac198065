// Md5Bench ROUNDS: 100 MiB of MD5 against OpenSSL's, over a buffer in the processor's cache. Processor time.
#include <openssl/evp.h>

#include <algorithm>
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
    Crypto::MD5 ours;
    uint8_t theirs[Crypto::MD5::DigestSize] = {};
    const auto cpuSeconds = [] { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; };
    Bench::Compare(
        std::atoi(argv[1]), cpuSeconds,
        [&] {
            for (int i = 0; i < Repeats; ++i) {
                ours.Start();
                ours.Update(bytes);
                ours.Finish();
            }
        },
        [&] {
            for (int i = 0; i < Repeats; ++i) {
                EVP_Digest(bytes.data(), bytes.size(), theirs, nullptr, EVP_md5(), nullptr);
            }
        });
    if (!std::ranges::equal(ours.Digest(), theirs)) {
        Bench::Fail("the two digests differ");
    }
    return 0;
}
