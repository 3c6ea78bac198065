#include "Tools/PackageTool/src/ConnectCheck.h"

#include "Libs/Processes/Cloud/src/S3Endpoint.h"
#include "Libs/Processes/Cloud/src/S3Upload.h"
#include "Tools/PackageTool/src/ConfigSections.h"

namespace {

constexpr std::string_view Object = "Stored by PackageTool check-config --connect. It can be deleted.\n";

// The client has said the reason in the log.
ExitCode TryUploader(const std::string& where, const UploaderS3Config& config) {
    ObjectStoreConfig store = StoreOf(config);
    store.connectTimeoutMs = 500; // as the agent's uploads
    store.requestTimeoutMs = 30000;
    const std::span bytes(reinterpret_cast<const uint8_t*>(Object.data()), Object.size());
    Platform::MemorySource source(bytes);
    UploadAnswer answer;
    const ResultCode result = PutPackage(*CreateObjectStore(store), source, config.verifyETag, answer);
    Console::Print(
        where +
        (result ? "stored " + answer.key + " in bucket " + config.bucketName : std::string(result.Text())) +
        "\n");
    return result ? ExitCode::Good : ExitCode::ProblemsFound;
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
    for (const auto& [name, uploader] : sections.uploaders) {
        Raise(code, TryUploader(Console::Printable(file + ": " + Quoted(name) + ": "), uploader.config));
    }
    static_cast<void>(ShutdownObjectStores());
    return code;
}
