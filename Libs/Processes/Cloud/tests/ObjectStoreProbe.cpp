// Puts one object with the client that this build uses, and prints the outcome. For tests against a real
// store.
//
//   ObjectStoreProbe bucket=NAME accessKey=ID secretKey=KEY file=PATH endpoint=URL requestTimeout=MS
//       [region=NAME] [pathStyle=1] [connectTimeout=MS] [key=TEXT] [md5=BASE64] [length=BYTES]
//
// Without key, md5 and length the request is the agent's for a package. Prints
// result="OK" etag=["5d41402abc4b2a76b9719d911017c592"] status=200 retry-after=0 ms=12 . Exit code: 0 if all
// succeeded.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "Libs/Processes/Cloud/src/S3Upload.h"

namespace {

std::map<std::string, std::string> g_arguments;

std::string Text(const char* name, const std::string& otherwise = "") {
    const auto found = g_arguments.find(name);
    return found == g_arguments.end() ? otherwise : found->second;
}
int64_t Number(const char* name, int64_t otherwise) {
    return std::stoll(Text(name, std::to_string(otherwise)));
}

bool PutOne(const ObjectStoreConfig& config, PutObjectRequest request, std::span<const uint8_t> content) {
    Platform::MemorySource body(content); // of this thread
    request.body = &body;
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
    for (const std::string argument : std::vector<const char*>(argv + 1, argv + argc)) {
        g_arguments[argument.substr(0, argument.find('='))] = argument.substr(argument.find('=') + 1);
    }
    const ObjectStoreConfig config = {Text("endpoint"),
                                      Text("region", "us-east-1"),
                                      Text("pathStyle").empty(),
                                      Text("bucket"),
                                      Text("accessKey"),
                                      Text("secretKey"),
                                      static_cast<uint32_t>(Number("connectTimeout", 500)),
                                      static_cast<uint32_t>(Number("requestTimeout", 30000))};
    std::ifstream file(Text("file"), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    const std::span bytes(reinterpret_cast<const uint8_t*>(content.data()), content.size());
    Platform::MemorySource body(bytes);
    PutObjectRequest request;
    static_cast<void>(RequestForPackage(body, request)); // memory can be read
    request.key = Text("key", request.key);
    request.contentMd5 = Text("md5", request.contentMd5);
    request.contentLength = Number("length", request.contentLength);

    const bool isGood = InitializeObjectStores() && PutOne(config, request, bytes);
    return ShutdownObjectStores() && isGood ? 0 : 1;
}
