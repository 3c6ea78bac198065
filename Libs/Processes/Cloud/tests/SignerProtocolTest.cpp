#include "Libs/Processes/Cloud/src/SignerProtocol.h"

#include <gtest/gtest.h>

namespace {

// "host port target name=value ..." of an answer, or the refusal.
std::string Read(const std::string& answer) {
    SignerProtocol::SignedPut put;
    if (const ResultCode result = SignerProtocol::ReadAnswer(answer, put); !result) {
        return result.Text();
    }
    std::string text = put.address.host + " " + std::to_string(put.address.port) + " " + put.address.target;
    for (const HttpHeader& header : put.headers) {
        text += " " + header.name + "=" + header.value;
    }
    return text;
}

} // namespace

TEST(SignerProtocol, AnswersAreTakenWholeOrRefused) {
    const auto answer = [](const std::string& url, const std::string& headers) {
        return R"({"Url": ")" + url + R"(", "Headers": {)" + headers + "}}";
    };
    EXPECT_EQ(
        Read(R"({"Url": "https://b.store/k?X-Amz-Signature=1%2F", "Headers": {"x-b": "1 2"}, "More": 1})"),
        "b.store 443 /k?X-Amz-Signature=1%2F x-b=1 2");
    EXPECT_EQ(Read(answer("http://127.1.2.3:80?a", R"("HOST": "evil", "Content-MD5": "", "b": "")")),
              "127.1.2.3 80 /?a b=");
    for (const std::string& text :
         {std::string("<html>"), std::string(R"({"Url": "https://s/"})"), std::string("[]"),
          std::string(R"({"Url": 5, "Headers": {}})"), answer("https://s/", R"("a": 5)"),
          answer("https://s/", std::string(SignerProtocol::LargestAnswer, ' '))}) {
        EXPECT_EQ(Read(text), "Signer's answer is not understood") << text;
    }
    for (const char* const url :
         {"", "/k", "http://store/", "http://127.1/", "http://127.0.0.1.example/", "http://127.0.0.256/",
          "http://localhost.example/", "http://localhost@store/", "https://user:pw@store/",
          "https://store/#f", "https://store/a b", R"(https://store/\r\nHost: evil)",
          R"(https://store\\evil/)", "ftp://localhost/"}) {
        EXPECT_EQ(Read(answer(url, "")), "Signer's answer has no https address") << url;
    }
    for (const char* const header :
         {R"("a": "b\r\nHost: evil")", R"("a": "b\u0000")", R"("a": "\u00fc")", R"("": "b")", R"("a b": "c")",
          R"("a:": "c")", R"("Transfer-Encoding": "chunked")"}) {
        EXPECT_EQ(Read(answer("https://s/", header)), "Signer's answer has a header that can't be sent")
            << header;
    }
    for (const char* const url : {"http://localhost/", "HTTP://LocalHost:8080", "http://[::1]:1/x"}) {
        EXPECT_TRUE(SignerProtocol::ParseAddress(url)) << url;
    }
}
