#include "Libs/Processes/Cloud/src/SignerProtocol.h"

#include <algorithm>
#include <map>
#include <span>
#include <utility>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

struct SignerAnswer {
    std::string url;
    std::map<std::string, std::string> headers;
};
Reflection_DeclareType(SignerAnswer);
Reflection_DefineType(SignerAnswer, Reflection_Field(url, "Url"), Reflection_Field(headers, "Headers"));

namespace {

constexpr std::string_view OfEachPut[] = {"host", "content-length", "content-md5"};
constexpr std::string_view OfEachQuestion[] = {"host", "content-length", "content-type"};
constexpr std::string_view OfTheConnection[] = {
    "connection", "expect",  "keep-alive",        "te",
    "trailer",    "upgrade", "transfer-encoding", "proxy-connection"};

bool IsOneOf(std::string_view name, std::span<const std::string_view> names) {
    return std::ranges::find(names, String::LowerAscii(name)) != names.end();
}

bool IsTokenCharacter(char c) {
    return String::IsAlphanumeric(c) || std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
}

// Whether a request with this header is still one request: a token as its name, printable ASCII as its value,
// and nothing that says how the connection or the body is cut.
bool IsSafeHeader(std::string_view name, std::string_view value) {
    return String::AllOf(name, SignerProtocol::LargestAnswer, IsTokenCharacter) &&
           !IsOneOf(name, OfTheConnection) &&
           std::ranges::all_of(value, [](char c) { return c >= ' ' && c <= '~'; });
}

} // namespace

std::optional<HttpAddress> SignerProtocol::ParseAddress(std::string_view url) {
    std::optional<HttpAddress> address = HttpAddress::Parse(url);
    return address && (address->secure || address->IsLoopback()) ? address : std::nullopt;
}

ResultCode SignerProtocol::CheckSettings(const UploaderPresignedConfig& config) {
    if (!ParseAddress(config.signerUrl)) {
        return "SignerUrl is not an https address";
    }
    for (const auto& [name, value] : config.signerHeaders) {
        if (!IsSafeHeader(name, value) || IsOneOf(name, OfEachQuestion)) {
            return "SignerHeaders has a header that can't be sent";
        }
    }
    return Platform::Success;
}

std::string SignerProtocol::Question(const PutObjectRequest& request) {
    return R"({"Key": ")" + request.key + R"(", "Size": )" + std::to_string(request.contentLength) +
           R"(, "ContentMD5": ")" + request.contentMd5 + R"("})";
}

ResultCode SignerProtocol::ReadAnswer(std::string_view text, SignedPut& put) {
    JsonDocument document;
    SignerAnswer answer;
    if (text.size() > LargestAnswer || !JsonSerialization::ParseText(text, document) ||
        !JsonSerialization::ReadRecord(document, answer)) {
        return "Signer's answer is not understood";
    }
    std::optional<HttpAddress> address = ParseAddress(answer.url);
    if (!address) {
        return "Signer's answer has no https address";
    }
    put = {std::move(*address), {}};
    for (auto& [name, value] : answer.headers) {
        if (!IsSafeHeader(name, value)) {
            return "Signer's answer has a header that can't be sent";
        }
        if (!IsOneOf(name, OfEachPut)) {
            put.headers.push_back({name, std::move(value)});
        }
    }
    return Platform::Success;
}
