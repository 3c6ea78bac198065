// Puts one object with the client that this build uses, and prints what came of it. For tests against a real
// store.
//
//   ObjectStoreProbe bucket=NAME accessKey=ID secretKey=KEY file=PATH [endpoint=URL] [region=NAME]
//   [pathStyle=1]
//       [connectTimeout=MS] [requestTimeout=MS] [key=TEXT] [md5=BASE64] [length=BYTES] [parallel=COUNT]
//
// Without key, md5 and length the request is the one that the agent makes for a package. One line for each of
// the parallel requests:
//   result="OK" etag=["5d41402abc4b2a76b9719d911017c592"] ms=12
// The exit code is 0 when all succeeded, 1 when one failed and 2 when the command line is wrong.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Processes/Cloud/src/S3PackageUpload.h"

namespace {

using Arguments = std::map<std::string, std::string>;

// name=value each.
Arguments ReadArguments(int count, char** values) {
    Arguments arguments;
    for (int i = 1; i < count; ++i) {
        const std::string argument = values[i];
        const std::size_t equals = argument.find('=');
        arguments[argument.substr(0, equals)] =
            equals == std::string::npos ? "" : argument.substr(equals + 1);
    }
    return arguments;
}

std::string Text(const Arguments& arguments, const char* name, const std::string& otherwise) {
    const auto found = arguments.find(name);
    return found == arguments.end() ? otherwise : found->second;
}

long long Number(const Arguments& arguments, const char* name, long long otherwise) {
    const auto found = arguments.find(name);
    return found == arguments.end() ? otherwise : std::strtoll(found->second.c_str(), nullptr, 10);
}

ObjectStoreConfig ConfigFrom(const Arguments& arguments) {
    ObjectStoreConfig config;
    config.endpointOverride = Text(arguments, "endpoint", "");
    config.region = Text(arguments, "region", config.region);
    config.useVirtualAddressing = Number(arguments, "pathStyle", 0) == 0;
    config.bucket = Text(arguments, "bucket", "");
    config.accessKey = Text(arguments, "accessKey", "");
    config.secretKey = Text(arguments, "secretKey", "");
    config.connectTimeoutMs =
        static_cast<uint32_t>(Number(arguments, "connectTimeout", config.connectTimeoutMs));
    config.requestTimeoutMs =
        static_cast<uint32_t>(Number(arguments, "requestTimeout", config.requestTimeoutMs));
    return config;
}

PutObjectRequest RequestFrom(const Arguments& arguments, std::span<const uint8_t> body) {
    PutObjectRequest request = RequestForPackage(body);
    request.key = Text(arguments, "key", request.key);
    request.contentMd5 = Text(arguments, "md5", request.contentMd5);
    request.contentLength = Number(arguments, "length", request.contentLength);
    return request;
}

struct Outcome {
    ResultCode result;
    std::string eTag;
    long long milliseconds = 0;
};

void PutOne(const ObjectStoreConfig& config, const PutObjectRequest& request, Outcome& outcome) {
    const auto start = std::chrono::steady_clock::now();
    outcome.result = CreateObjectStore(config)->PutObject(request, outcome.eTag);
    outcome.milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
            .count();
}

bool PutAll(const ObjectStoreConfig& config, const PutObjectRequest& request, std::size_t count) {
    std::vector<Outcome> outcomes(count);
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (Outcome& outcome : outcomes) {
        threads.emplace_back([&] { PutOne(config, request, outcome); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    bool allSucceeded = true;
    for (const Outcome& outcome : outcomes) {
        std::printf("result=\"%s\" etag=[%s] ms=%lld\n", outcome.result.Text(), outcome.eTag.c_str(),
                    outcome.milliseconds);
        allSucceeded = allSucceeded && outcome.result.Succeeded();
    }
    return allSucceeded;
}

} // namespace

int main(int argc, char** argv) {
    const Arguments arguments = ReadArguments(argc, argv);
    std::ifstream file(Text(arguments, "file", ""), std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "cannot open the file to put\n");
        return 2;
    }
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    const std::span body(reinterpret_cast<const uint8_t*>(content.data()), content.size());
    const auto parallel = static_cast<std::size_t>(Number(arguments, "parallel", 1));

    if (!InitializeObjectStores()) {
        return 1;
    }
    const bool done = PutAll(ConfigFrom(arguments), RequestFrom(arguments, body), parallel);
    return ShutdownObjectStores() && done ? 0 : 1;
}
