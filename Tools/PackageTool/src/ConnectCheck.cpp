#include "Tools/PackageTool/src/ConnectCheck.h"

#include <algorithm>
#include <vector>

#include "Libs/Processes/Cloud/src/PresignedObjectStore.h"
#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/S3Upload.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Tools/PackageTool/src/ConfigSections.h"

namespace {

constexpr std::string_view Header =
    R"({"Host":"","Time":"","Application":"PackageTool","SubmissionType":"check-config",)"
    R"("Catalog":{"Attachments":[]},"Exception":{"Message":"Stored by check-config --connect. It can be )"
    R"(deleted.","StackTrace":""},"Callstack":[],"ModuleInfo":[],"Changelist":0})";

// A package without files: who reads the bucket finds nothing broken in it. The same bytes every time.
std::vector<uint8_t> TinyPackage() {
    std::vector<uint8_t> package;
    PackageFormat::Composer composer([&](uint64_t offset, std::span<const uint8_t> bytes) {
        const auto start = static_cast<std::size_t>(offset);
        package.resize(std::max(package.size(), start + bytes.size()));
        std::ranges::copy(bytes, package.begin() + static_cast<std::ptrdiff_t>(start));
        return Platform::Success;
    });
    uint64_t size = 0; // the target never fails
    static_cast<void>(composer.AppendHeader(Platform::BytesOf(Header)));
    static_cast<void>(composer.Finish(size));
    return package;
}

// The client has said the reason in the log.
ExitCode TryStore(const std::string& where, IObjectStore& store, bool verifyETag, const std::string& place) {
    const std::vector<uint8_t> package = TinyPackage();
    Platform::MemorySource source(package);
    UploadAnswer answer;
    const ResultCode result = PutPackage(store, source, verifyETag, answer);
    Console::Print(where + (result ? "stored " + answer.key + place : std::string(result.Text())) + "\n");
    return result ? ExitCode::Good : ExitCode::ProblemsFound;
}

ExitCode TryUploader(const std::string& where, const UploaderS3Config& config) {
    return TryStore(where, *CreateObjectStore(StoreOf(config)), config.verifyETag,
                    " in bucket " + config.bucketName);
}

ExitCode TryUploader(const std::string& where, const UploaderPresignedConfig& config) {
    return TryStore(where, *CreatePresignedObjectStore(config), config.verifyETag, " where the signer said");
}

} // namespace

ExitCode TryUploaders(const std::string& file, std::string_view text) {
    JsonDocument document;
    ConfigSections sections;
    if (!JsonSerialization::ParseText(text, document) || !InitializeObjectStores()) {
        return ExitCode::ProblemsFound;
    }
    ReadConfigSections(
        document, [](const JsonValue&, const std::string&) {}, sections);
    ExitCode code = ExitCode::Good;
    const auto tryEach = [&](const auto& uploaders) {
        for (const auto& [name, uploader] : uploaders) {
            Raise(code, TryUploader(Console::Printable(file + ": " + Quoted(name) + ": "), uploader.config));
        }
    };
    tryEach(sections.ofUploaderS3);
    tryEach(sections.ofUploaderPresigned);
    static_cast<void>(ShutdownObjectStores());
    return code;
}
