#include "Libs/Processes/Cloud/src/PresignedObjectStore.h"

#include <utility>

#include "Libs/Processes/Cloud/src/S3Upload.h"
#include "Libs/Processes/Cloud/src/SignerProtocol.h"
#include "Libs/Processes/Cloud/src/WinHttpRequest.h"

namespace {

class PresignedObjectStore : public IObjectStore {
public:
    explicit PresignedObjectStore(UploaderPresignedConfig config) : m_config(std::move(config)) {}

    ResultCode PutObject(const PutObjectRequest& request, PutAnswer& answer) override;

private:
    ResultCode AskSigner(const std::string& question, HttpAnswer& answer) const;

    const UploaderPresignedConfig m_config;
};

HttpRequest NewRequest(HttpAddress address, std::vector<HttpHeader> headers, Platform::ByteSource& body) {
    HttpRequest request;
    headers.push_back({"Host", address.HostHeader()});
    headers.push_back({"Content-Length", std::to_string(body.GetSize())});
    request.address = std::move(address);
    request.headers = std::move(headers);
    request.body = &body;
    return request;
}

ResultCode PresignedObjectStore::PutObject(const PutObjectRequest& request, PutAnswer& answer) {
    HttpAnswer heard;
    const ResultCode asked = AskSigner(SignerProtocol::Question(request), heard);
    answer = {{}, heard.httpStatus, heard.retryAfterSeconds};
    RETURN_IF_FAILED(asked);
    SignerProtocol::SignedPut put;
    if (const ResultCode result = SignerProtocol::ReadAnswer(heard.body, put); !result) {
        return LoggedStep(result, 0, {});
    }
    put.headers.push_back({"Content-MD5", request.contentMd5});
    return PutOverHttp(NewRequest(std::move(put.address), std::move(put.headers), *request.body), answer);
}

ResultCode PresignedObjectStore::AskSigner(const std::string& question, HttpAnswer& answer) const {
    if (const ResultCode result = SignerProtocol::CheckSettings(m_config); !result) {
        return LoggedStep(result, 0, {});
    }
    std::vector<HttpHeader> headers = {{"Content-Type", "application/json"}};
    for (const auto& [name, value] : m_config.signerHeaders) {
        headers.push_back({name, value});
    }
    Platform::MemorySource body(Platform::BytesOf(question));
    HttpRequest request =
        NewRequest(*SignerProtocol::ParseAddress(m_config.signerUrl), std::move(headers), body);
    request.method = "POST";
    request.largestAnswer = SignerProtocol::LargestAnswer;
    if (const ResultCode result = SendHttpRequest(request, answer); !result) {
        return LoggedStep(result, answer.error, {}, "Signer: ");
    }
    return answer.IsSuccess() ? Platform::Success
                              : LoggedStep("Signer refused the package", answer.httpStatus, {});
}

} // namespace

std::unique_ptr<IObjectStore> CreatePresignedObjectStore(const UploaderPresignedConfig& config) {
    return std::make_unique<PresignedObjectStore>(config);
}
