#include "Libs/Processes/Cloud/src/S3Upload.h"

#include <gtest/gtest.h>

namespace {

constexpr char Tag[] = "\"5d41402abc4b2a76b9719d911017c592\""; // of "hello"
constexpr char Mismatch[] = "MD5 of stream received by S3 doesn't match the MD5 we computed locally";

// Sends "hello" to a store that answers like this, and perhaps changes a byte meanwhile.
std::string Put(const char* eTag, ResultCode result = {}, bool changesByte = false, bool verifyETag = true) {
    struct Store : IObjectStore {
        ResultCode PutObject(const PutObjectRequest& request, PutAnswer& answer) override {
            EXPECT_EQ(request.key, "5d41402abc4b2a76b9719d911017c592");
            EXPECT_EQ(request.contentLength, 5);
            *changed = newByte;
            answer.eTag = eTag;
            return result;
        }
        Store(char* first, char byte, const char* text, ResultCode code)
            : changed(first), newByte(byte), eTag(text), result(code) {}
        char* changed;
        char newByte;
        const char* eTag;
        ResultCode result;
    };
    std::string package = "hello";
    Store store(package.data(), changesByte ? 'j' : 'h', eTag, result);
    Platform::MemorySource source({reinterpret_cast<const uint8_t*>(package.data()), package.size()});
    UploadAnswer answer;
    return PutPackage(store, source, verifyETag, answer).Text();
}

} // namespace

TEST(S3Upload, OnlyTheQuotedDigestConfirms) {
    EXPECT_EQ(Put(Tag), "OK");
    for (const char* eTag :
         {"\"5D41402ABC4B2A76B9719D911017C592\"", "5d41402abc4b2a76b9719d911017c592", "",
          "\"5d41402abc4b2a76b9719d911017c592-1\"", "\"5d41402abc4b2a76b9719d911017c592\" "}) {
        EXPECT_EQ(Put(eTag), Mismatch) << eTag;
    }
    EXPECT_EQ(Put(Tag, {}, true), Mismatch);
    EXPECT_EQ(Put("\"of-a-ciphertext\"", {}, false, false), "OK"); // the store took it by its Content-MD5
    EXPECT_EQ(Put(Tag, "The bucket is on fire"), "Failed to put stream in S3 bucket");
}

TEST(S3Upload, OfAnAnswerOnlyTheCodesLettersAreShown) {
    EXPECT_EQ(S3ErrorCode("<Error><Code>SlowDown</Code><Message>x"), "SlowDown");
    for (const char* answer :
         {"", "SlowDown", "<Code>", "<Code>Slow", "<Code>a\x1B[2J</Code>", "<Code>SK=1</Code>"}) {
        EXPECT_EQ(S3ErrorCode(answer), "") << answer;
    }
}

TEST(S3Upload, RetryAfterIsANumberOfSeconds) {
    for (const auto& [value, seconds] : {std::pair("120", 120u),
                                         {"0", 0u},
                                         {"99999999999999999999", 4294967295u},
                                         {"", 0u},
                                         {"-1", 0u},
                                         {"1.5", 0u},
                                         {"Fri, 31 Dec 1999 23:59:59 GMT", 0u}}) {
        EXPECT_EQ(RetryAfterSeconds(value), seconds) << value;
    }
}

TEST(S3Upload, LengthsAreAnnouncedAsSigned32Bits) {
    EXPECT_EQ(AnnouncedLength(2147483647), 2147483647);
    EXPECT_EQ(AnnouncedLength(2147483648), -2147483648LL);
    EXPECT_EQ(AnnouncedLength(4294967297), 1);
}
