#include "Libs/Processes/Cloud/src/SignerProtocol.h"

#include <gtest/gtest.h>

namespace {

constexpr char NotUnderstood[] = "Signer's answer is not understood";
constexpr char NoAddress[] = "Signer's answer has no https address";
constexpr char BadHeader[] = "Signer's answer has a header that can't be sent";

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
    const struct {
        std::string answer;
        const char* expected;
    } rows[] = {
        {R"({"Url": "https://b.store/k?X-Amz-Signature=1%2F", "Headers": {"x-b": "1 2"}, "More": 1})",
         "b.store 443 /k?X-Amz-Signature=1%2F x-b=1 2"},
        {R"({"Url": "http://127.1.2.3:80?a", "Headers": {"HOST": "evil", "Content-MD5": "", "b": ""}})",
         "127.1.2.3 80 /?a b="},
        // no answer of this form
        {"", NotUnderstood},
        {"<html>", NotUnderstood},
        {R"({"Url": "https://s/"})", NotUnderstood},
        {R"({"Url": 5, "Headers": {}})", NotUnderstood},
        {R"({"Url": "https://s/", "Headers": {"a": 5}})", NotUnderstood},
        {R"({"Url": "https://s/", "Headers": {}})" + std::string(SignerProtocol::LargestAnswer, ' '),
         NotUnderstood},
        {"[]", NotUnderstood},
        // addresses
        {R"({"Url": "", "Headers": {}})", NoAddress},
        {R"({"Url": "/k", "Headers": {}})", NoAddress},
        {R"({"Url": "http://store/", "Headers": {}})", NoAddress},
        {R"({"Url": "http://127.1/", "Headers": {}})", NoAddress},
        {R"({"Url": "http://127.0.0.1.example/", "Headers": {}})", NoAddress},
        {R"({"Url": "http://127.0.0.256/", "Headers": {}})", NoAddress},
        {R"({"Url": "http://localhost.example/", "Headers": {}})", NoAddress},
        {R"({"Url": "http://localhost@store/", "Headers": {}})", NoAddress},
        {R"({"Url": "https://user:pw@store/", "Headers": {}})", NoAddress},
        {R"({"Url": "https://store/#f", "Headers": {}})", NoAddress},
        {R"({"Url": "https://store/a b", "Headers": {}})", NoAddress},
        {R"({"Url": "https://store/\r\nHost: evil", "Headers": {}})", NoAddress},
        {R"({"Url": "https://store\\evil/", "Headers": {}})", NoAddress},
        {R"({"Url": "ftp://localhost/", "Headers": {}})", NoAddress},
        // headers
        {R"({"Url": "https://s/", "Headers": {"a": "b\r\nHost: evil"}})", BadHeader},
        {R"({"Url": "https://s/", "Headers": {"a": "b\u0000"}})", BadHeader},
        {R"({"Url": "https://s/", "Headers": {"a": "\u00fc"}})", BadHeader},
        {R"({"Url": "https://s/", "Headers": {"": "b"}})", BadHeader},
        {R"({"Url": "https://s/", "Headers": {"a b": "c"}})", BadHeader},
        {R"({"Url": "https://s/", "Headers": {"a:": "c"}})", BadHeader},
        {R"({"Url": "https://s/", "Headers": {"Transfer-Encoding": "chunked"}})", BadHeader},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Read(row.answer), row.expected) << row.answer;
    }
    for (const char* const url : {"http://localhost/", "HTTP://LocalHost:8080", "http://[::1]:1/x"}) {
        EXPECT_TRUE(SignerProtocol::ParseAddress(url)) << url;
    }
}
