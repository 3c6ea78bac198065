#include "Libs/Processes/Cloud/src/S3Upload.h"

#include <gtest/gtest.h>

namespace {

constexpr char Tag[] = "\"5d41402abc4b2a76b9719d911017c592\""; // of "hello"
constexpr char Mismatch[] = "MD5 of stream received by S3 doesn't match the MD5 we computed locally";

// Sends "hello" to a store that answers with this tag, and perhaps changes the byte that is sent first.
std::string Put(const char* eTag, char first = 'h') {
    struct Store : IObjectStore {
        ResultCode PutObject(const PutObjectRequest&, PutAnswer& answer) override {
            package[0] = newFirst;
            answer.eTag = tag;
            return {};
        }
        std::string package = "hello";
        char newFirst = 'h';
        const char* tag = "";
    } store;
    store.newFirst = first;
    store.tag = eTag;
    Platform::MemorySource source({reinterpret_cast<const uint8_t*>(store.package.data()), 5});
    UploadAnswer answer;
    return PutPackage(store, source, true, answer).Text();
}

} // namespace

TEST(S3Upload, OnlyTheQuotedDigestConfirms) {
    EXPECT_EQ(Put(Tag), "OK");
    for (const char* eTag :
         {"\"5D41402ABC4B2A76B9719D911017C592\"", "5d41402abc4b2a76b9719d911017c592", "",
          "\"5d41402abc4b2a76b9719d911017c592-1\"", "\"5d41402abc4b2a76b9719d911017c592\" "}) {
        EXPECT_EQ(Put(eTag), Mismatch) << eTag;
    }
    EXPECT_EQ(Put(Tag, 'j'), Mismatch);
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
