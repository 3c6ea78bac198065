#include "Libs/Processes/Cloud/src/WinHttpObjectStore.h"

#include <gtest/gtest.h>

TEST(WinHttpObjectStore, TheBodyIsSignedOnlyWhereTheTransportDoesNotProtectIt) {
    const std::string body = "abc";
    PutObjectRequest request;
    request.key = "key";
    request.contentLength = 3;
    request.body = {reinterpret_cast<const uint8_t*>(body.data()), body.size()};
    S3Endpoint endpoint;
    SigV4::Request put;
    ASSERT_TRUE(MakeSignedPut(request, {}, endpoint, "20130524T000000Z", put));
    EXPECT_EQ("UNSIGNED-PAYLOAD", put.payloadHash);
    endpoint.secure = false;
    ASSERT_TRUE(MakeSignedPut(request, {}, endpoint, "20130524T000000Z", put));
    EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", put.payloadHash);
}

TEST(WinHttpObjectStore, WhatCannotBeSentRightIsNotSent) {
    const std::string body = "abc";
    PutObjectRequest good;
    good.key = "key";
    good.contentMd5 = "kAFQmDzST7DWlj99KOF/cg==";
    good.contentType = "application/octet-stream";
    good.contentLength = 3;
    good.body = {reinterpret_cast<const uint8_t*>(body.data()), body.size()};
    ObjectStoreConfig config;
    config.endpointOverride = "http://127.0.0.1:1"; // refuses connections
    config.bucket = "crashes";
    config.accessKey = "AKID";

    const auto put = [&](auto change) {
        PutObjectRequest request = good;
        change(request);
        std::string eTag = "before";
        const ResultCode result = CreateObjectStore(config)->PutObject(request, eTag);
        EXPECT_EQ("", eTag);
        return std::string(result.Text());
    };
    EXPECT_EQ("Failed to send HTTP request", put([](PutObjectRequest&) {}));
    EXPECT_EQ("Object key is empty", put([](PutObjectRequest& r) { r.key.clear(); }));
    const std::string badLength = "Announced length is not the length of the body";
    EXPECT_EQ(badLength, put([](PutObjectRequest& r) { r.contentLength = -1; }));
    EXPECT_EQ(badLength, put([](PutObjectRequest& r) { r.contentLength = 2; }));
    const std::string badHeader = "Content header is missing or not printable";
    EXPECT_EQ(badHeader, put([](PutObjectRequest& r) { r.contentType = "text/plain\r\nx: y"; }));
    EXPECT_EQ(badHeader, put([](PutObjectRequest& r) { r.contentMd5 = ""; }));
}
