// Puts one object with the client that this build uses, as the agent puts a package, and prints the outcome.
//
//   ObjectStoreProbe bucket=NAME accessKey=ID secretKey=KEY file=PATH endpoint=URL requestTimeout=MS
//       [connectTimeout=MS] [length=BYTES]
//
// A given length is announced instead of the file's. Prints
// result="OK" etag=["5d41402abc4b2a76b9719d911017c592"] status=200 retry-after=0 ms=12 . Exit code: 0 if all
// succeeded.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "Libs/Processes/Cloud/src/S3Upload.h"

namespace {

bool PutOne(const ObjectStoreConfig& config, const PutObjectRequest& request) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    PutAnswer answer;
    const ResultCode result = CreateObjectStore(config)->PutObject(request, answer);
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
    std::printf("result=\"%s\" etag=[%s] status=%u retry-after=%u ms=%.0f\n", result.Text(),
                answer.eTag.c_str(), static_cast<unsigned>(answer.httpStatus),
                static_cast<unsigned>(answer.retryAfterSeconds), elapsed.count());
    return result.Succeeded();
}

} // namespace

int main(int argc, char** argv) {
    std::map<std::string, std::string> given = {{"connectTimeout", "500"}};
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        given[argument.substr(0, argument.find('='))] = argument.substr(argument.find('=') + 1);
    }
    const auto number = [&](const char* name) { return static_cast<uint32_t>(std::stoul(given[name])); };
    const ObjectStoreConfig config = {given["endpoint"],
                                      "us-east-1",
                                      false,
                                      given["bucket"],
                                      given["accessKey"],
                                      given["secretKey"],
                                      number("connectTimeout"),
                                      number("requestTimeout")};
    std::ifstream file(given["file"], std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    Platform::MemorySource body({reinterpret_cast<const uint8_t*>(content.data()), content.size()});
    PutObjectRequest request;
    static_cast<void>(RequestForPackage(body, request)); // memory can be read
    if (given.contains("length")) {
        request.contentLength = std::stoll(given["length"]);
    }
    const bool isGood = InitializeObjectStores() && PutOne(config, request);
    return ShutdownObjectStores() && isGood ? 0 : 1;
}
