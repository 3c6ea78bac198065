#include "Libs/Processes/Cloud/src/S3Endpoint.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace std::string_literals;

namespace {

// "https host port header /path/" on one line, or the refusal.
std::string Describe(const std::string& endpointOverride, const std::string& bucket = "crashes",
                     const std::string& region = "us-east-1", const std::string& accessKey = "AKIA",
                     bool useVirtualAddressing = true) {
    S3Endpoint endpoint;
    const ResultCode result = ResolveS3Endpoint(
        {endpointOverride, region, useVirtualAddressing, bucket, accessKey, "", 0, 0}, endpoint);
    const HttpAddress& address = endpoint.address;
    return !result ? result.Text()
                   : (address.secure ? "https " : "http ") + address.host + " " +
                         std::to_string(address.port) + " " + address.HostHeader() + " " + address.target;
}

} // namespace

TEST(S3Endpoint, OverridesAreASchemeAHostAndAPort) {
    static constexpr const char* rows[][2] = {
        {"", "https crashes.s3.us-east-1.amazonaws.com 443 crashes.s3.us-east-1.amazonaws.com /"},
        {"HTTPS://Store.Local/", "https crashes.store.local 443 crashes.store.local /"},
        {"http://store.local:8080/", "http crashes.store.local 8080 crashes.store.local:8080 /"},
        {"https://localhost:80", "https crashes.localhost 80 crashes.localhost:80 /"},
        {"http://[::1]:8080", "http [::1] 8080 [::1]:8080 /crashes/"},
        {"https://[2001:DB8::7]", "https [2001:db8::7] 443 [2001:db8::7] /crashes/"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(Describe(text), expected) << text;
    }
    EXPECT_EQ(Describe("", "crashes", "cn-north-1", "AKIA", false),
              "https s3.cn-north-1.amazonaws.com.cn 443 s3.cn-north-1.amazonaws.com.cn /crashes/");
}

TEST(S3Endpoint, OtherOverridesAreRefused) {
    std::istringstream rows(
        "store.local:8080 //store.local ftp://store.local http:/store.local http:/// http://:8080 "
        "http://store: http://store:0 http://store:65536 http://store:99999999999 http://store:+80 "
        "http://store:80:80 http://store:8o http://user:pw@store http://store/path http://store// "
        "http://store?x http://store#x http://store\\x http://.store http://store. http://a..b "
        "http://st\xc3\xb6re http://[::1 http://::1 http://[]:80 http://[::1]80 http://[::1%25eth0] "
        "http://[::g] http://[127.0.0.1] http://x[::1] http://%73tore");
    std::vector<std::string> texts{std::istream_iterator<std::string>(rows), {}};
    texts.insert(texts.end(), {"http://store\r\nx: y", "http://store\0"s, " http://store", "http://st ore",
                               "http://" + std::string(64, 'a')});
    for (const std::string& text : texts) {
        EXPECT_EQ(Describe(text), "Endpoint override is not a scheme, a host and a port") << text;
    }
}

TEST(S3Endpoint, OnlyALowerCaseLabelLeadsTheHost) {
    EXPECT_EQ(Describe("http://store", "my-crashes-2"), "http my-crashes-2.store 80 my-crashes-2.store /");
    for (const std::string bucket : {"my.crashes", "Crashes", "a_b", "-a", "a-"}) {
        EXPECT_EQ(Describe("http://store", bucket), "http store 80 store /" + bucket + "/");
    }
}

TEST(S3Endpoint, WhatCouldEndALineOrAPathIsRefused) {
    for (const std::string& text :
         {""s, "a\r\nb"s, "a\0b"s, "a b"s, "a/b"s, "a\x7f"s, std::string(256, 'a')}) {
        EXPECT_EQ(Describe("", text), "Bucket name is not valid") << text;
        EXPECT_EQ(Describe("", "b", text), "Region is not valid") << text;
        EXPECT_EQ(Describe("", "b", "r", text), "Access key is not valid") << text;
    }
    for (const char* bucket : {".", "..", "a?b", "a#b", "a%2f", "a\\b", "a:b", "a@b"}) {
        EXPECT_EQ(Describe("", bucket), "Bucket name is not valid");
    }
    EXPECT_EQ(Describe("", "b", "us-east-1.evil.example"), "Region is not valid");
}
