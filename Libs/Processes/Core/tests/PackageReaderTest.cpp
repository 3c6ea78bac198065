#include "Libs/Processes/Core/src/PackageReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

namespace {

std::span<const uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

std::string FileRecord(std::string_view name, std::string_view data) {
    return R"({"File":")" + std::string(name) + R"(","MD5":")" + Crypto::MD5OfBytes(Bytes(data)) + "\"}";
}

std::string Header(const std::string& log, const std::string& attachments) {
    return R"({"Host":"h","Time":"t","Application":"a","SubmissionType":"s","Catalog":{"Log":)" + log +
           R"(,"Attachments":[)" + attachments +
           R"(]},"Exception":{"Message":"","StackTrace":""},"Callstack":[],"ModuleInfo":[],"Changelist":1})";
}

std::string Package(const std::string& header, const std::vector<std::string>& entries) {
    std::string package;
    PackageFormat::Composer composer([&](uint64_t offset, std::span<const uint8_t> bytes) {
        package.resize(std::max<std::size_t>(package.size(), offset + bytes.size()));
        std::ranges::copy(bytes, package.begin() + static_cast<std::ptrdiff_t>(offset));
        return Platform::Success;
    });
    EXPECT_TRUE(composer.AppendHeader(Bytes(header)));
    for (const std::string& entry : entries) {
        Platform::MemorySource data(Bytes(entry));
        EXPECT_TRUE(composer.AppendEntry(data, "")); // it finds the digest itself
    }
    uint64_t size = 0;
    EXPECT_TRUE(composer.Finish(size));
    EXPECT_EQ(size, package.size());
    return package;
}

std::string UsualPackage() {
    return Package(Header(FileRecord("game.log", "LOG"), FileRecord("sub/note.txt", "NOTES")),
                   {"LOG", "NOTES"});
}

// Every problem, digests included, as lines of offset and text.
std::string Problems(const std::string& package) {
    Platform::MemorySource source(Bytes(package));
    PackageReader reader(source);
    reader.CheckDigests([](uint64_t) {});
    std::string text;
    for (const PackageProblem& problem : reader.GetProblems()) {
        text += std::to_string(problem.offset) + ": " + problem.text + "\n";
    }
    return text;
}

std::string Replaced(std::string text, std::size_t at, std::string_view part) {
    return text.replace(at, part.size(), part);
}

} // namespace

TEST(PackageReader, ReportsEveryShorterAndEveryChangedPackage) {
    const std::string package = UsualPackage();
    for (std::size_t at = 0; at < package.size(); ++at) {
        EXPECT_NE(Problems(package.substr(0, at)), "") << at;
        std::string changed = package;
        changed[at] = static_cast<char>(changed[at] ^ 0x01);
        EXPECT_NE(Problems(changed), "") << at;
    }
}

TEST(PackageReader, SaysWhatIsWrongAndWhere) {
    const std::string package = UsualPackage();
    const std::size_t entry = package.size() - 45;
    const std::pair<std::string, std::string> cases[] = {
        {"", "0: A package begins with 48 bytes of lengths and digest, but 0 bytes are all there is"},
        {Replaced(package, 40, "FFFFFFFF"),
         "40: The header is recorded as 4294967295 bytes, but the body has "},
        {Replaced(package, entry, "00000006"), std::to_string(entry) + ": The entry is recorded as 6 bytes"},
        {Package(Header(FileRecord("game.log", "LOG"), ""), {}),
         "48: The header's catalog names 1 files, but the package holds 0 entries"},
        {Package(Header(FileRecord("../evil", "LOG"), ""), {"LOG"}),
         "48: The header's catalog has an unsafe file name: \"../evil\""},
    };
    for (const auto& [damaged, problem] : cases) {
        EXPECT_TRUE(Problems(damaged).starts_with(problem)) << problem;
    }
}
