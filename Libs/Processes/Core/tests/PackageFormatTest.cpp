#include "Libs/Processes/Core/src/PackageFormat.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

std::span<const uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

std::string Compose(std::string_view header, const std::vector<std::string>& entries, std::size_t expected) {
    PackageFormat::Composer composer;
    EXPECT_TRUE(composer.Start(Bytes(header), expected));
    for (const std::string& entry : entries) {
        EXPECT_TRUE(composer.AppendEntry(Bytes(entry)));
    }
    const std::vector<uint8_t> package = composer.Take();
    return {package.begin(), package.end()};
}

} // namespace

// Digests by md5sum.
TEST(PackageFormat, EntriesFollowTheHeaderBackToBack) {
    const std::string expected = "0000005D"
                                 "22518f7f801c6c5443f69584bc847dc5"
                                 "00000002"
                                 "{}"
                                 "00000001"
                                 "0cc175b9c0f1b6a831c399e269772661"
                                 "a"
                                 "0000000A"
                                 "e807f1fcf82d132f9bb018ca6738a19f"
                                 "1234567890";
    EXPECT_EQ(Compose("{}", {"a", "1234567890"}, 93), expected);
    EXPECT_EQ(Compose("{}", {"a", "1234567890"}, 0), expected); // a wrong size costs time, not bytes
}

TEST(PackageFormat, LengthsAreUpperCaseDigits) {
    const std::string package = Compose(std::string(0xABCDE, 'x'), {}, 0);
    EXPECT_EQ(package.substr(0, 8), "000ABCDE");
    EXPECT_EQ(package.substr(40, 8), "000ABCDE");
}

TEST(PackageFormat, TheBufferDoesNotGrowWhenItsSizeWasKnown) {
    PackageFormat::Composer composer;
    ASSERT_TRUE(composer.Start(Bytes("{}"), 2 + 40 + 1));
    ASSERT_TRUE(composer.AppendEntry(Bytes("a")));
    const std::vector<uint8_t> package = composer.Take();
    EXPECT_EQ(package.capacity(), package.size());
}

TEST(PackageFormat, ASizeNoMemoryHoldsIsAFailure) {
    PackageFormat::Composer composer;
    EXPECT_STREQ(composer.Start(Bytes("{}"), SIZE_MAX / 2).Text(), "Failed to allocate memory for package");
}
