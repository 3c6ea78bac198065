#include "Libs/Processes/Cloud/src/S3PackageUpload.h"

#include <gtest/gtest.h>

namespace {

std::span<const uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

// Answers as told and keeps what it was asked.
class ScriptedStore : public IObjectStore {
public:
    ResultCode PutObject(const PutObjectRequest& request, std::string& eTag) override {
        m_request = request;
        eTag = m_eTag;
        return m_result;
    }

    PutObjectRequest m_request;
    std::string m_eTag;
    ResultCode m_result;
};

constexpr char Mismatch[] = "MD5 of stream received by S3 doesn't match the MD5 we computed locally";

} // namespace

TEST(S3PackageUpload, RequestDescribesThePackage) {
    const auto body = BytesOf("hello");
    const PutObjectRequest request = RequestForPackage(body);
    EXPECT_EQ("5d41402abc4b2a76b9719d911017c592", request.key);
    EXPECT_EQ("XUFAKrxLKna5cZ2REBfFkg==", request.contentMd5);
    EXPECT_EQ("application/octet-stream", request.contentType);
    EXPECT_EQ(5, request.contentLength);
    EXPECT_EQ(body.data(), request.body.data());
    EXPECT_EQ(body.size(), request.body.size());
}

TEST(S3PackageUpload, AnswersAreJudgedByTheirETag) {
    static constexpr struct {
        const char* eTag;
        const char* expected;
    } rows[] = {
        {"\"5d41402abc4b2a76b9719d911017c592\"", "OK"},
        {"\"5D41402ABC4B2A76B9719D911017C592\"", Mismatch},
        {"5d41402abc4b2a76b9719d911017c592", Mismatch},
        {"\"5d41402abc4b2a76b9719d911017c592-1\"", Mismatch},
        {"\"5d41402abc4b2a76b9719d911017c592\" ", Mismatch},
        {"\"5d41402abc4b2a76b9719d911017c592", Mismatch},
        {"\"d41d8cd98f00b204e9800998ecf8427e\"", Mismatch},
        {"", Mismatch},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.eTag);
        ScriptedStore store;
        store.m_eTag = row.eTag;
        EXPECT_STREQ(row.expected, PutPackage(store, BytesOf("hello")).Text());
        EXPECT_EQ("5d41402abc4b2a76b9719d911017c592", store.m_request.key);
    }
}

TEST(S3PackageUpload, AFailureOfTheStoreHidesItsReasonAndItsTag) {
    ScriptedStore store;
    store.m_eTag = "\"5d41402abc4b2a76b9719d911017c592\"";
    store.m_result = "The bucket is on fire";
    EXPECT_STREQ("Failed to put stream in S3 bucket", PutPackage(store, BytesOf("hello")).Text());
}

TEST(S3PackageUpload, BytesThatChangeWhileTheyAreSentFail) {
    std::string package = "hello";
    class Corruptor : public ScriptedStore {
    public:
        explicit Corruptor(std::string& bytes) : m_bytes(bytes) {}
        ResultCode PutObject(const PutObjectRequest& request, std::string& eTag) override {
            m_eTag = "\"" + request.key + "\"";
            m_bytes[0] = 'j';
            return ScriptedStore::PutObject(request, eTag);
        }

    private:
        std::string& m_bytes;
    } store(package);
    EXPECT_STREQ(Mismatch, PutPackage(store, BytesOf(package)).Text());
}

TEST(S3PackageUpload, LengthsAreAnnouncedAsSigned32Bits) {
    EXPECT_EQ(0, AnnouncedLength(0));
    EXPECT_EQ(2147483647, AnnouncedLength(2147483647));
    EXPECT_EQ(-2147483648LL, AnnouncedLength(2147483648));
    EXPECT_EQ(1, AnnouncedLength(4294967297));
}

TEST(S3PackageUpload, Base64PadsToGroupsOfFour) {
    static constexpr struct {
        const char* bytes;
        const char* text;
    } rows[] = {{"", ""},
                {"f", "Zg=="},
                {"fo", "Zm8="},
                {"foo", "Zm9v"},
                {"foob", "Zm9vYg=="},
                {"fooba", "Zm9vYmE="},
                {"foobar", "Zm9vYmFy"},
                {"\xfb\xff\xbf", "+/+/"},
                {"\xff\xff\xff", "////"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, Base64Encode(BytesOf(row.bytes)));
    }
}
