#include "Libs/Processes/Core/src/PackageReader.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Corpus.h"

namespace {

// Every problem, digests included, as lines of offset and text.
std::string Problems(const std::string& package) {
    Platform::MemorySource source({reinterpret_cast<const uint8_t*>(package.data()), package.size()});
    PackageReader reader(source);
    reader.CheckDigests([](uint64_t) {});
    std::string text;
    for (const PackageProblem& problem : reader.GetProblems()) {
        text += std::to_string(problem.offset) + ": " + problem.text + "\n";
    }
    return text;
}

} // namespace

TEST(PackageReader, ReportsEveryShorterAndEveryChangedPackage) {
    const std::string package = ReadCorpus("Package/two-files");
    EXPECT_EQ(Problems(package), "");
    for (std::size_t at = 0; at < package.size(); ++at) {
        EXPECT_NE(Problems(package.substr(0, at)), "") << at;
        std::string changed = package;
        changed[at] = static_cast<char>(changed[at] ^ 0x01);
        EXPECT_NE(Problems(changed), "") << at;
    }
}

TEST(PackageReader, SaysWhatIsWrongAndWhere) {
    static constexpr const char* rows[][2] = {
        // the file, and the beginning of one of its problems
        {"header-length-too-big", "40: The header is recorded as 4294967295 bytes, but the body has 440"},
        {"truncated-entry", "423: The entry is recorded as 25 bytes, but the body ends after 20 bytes"},
        {"truncated-entry", "48: The header's catalog names 2 files, but the package holds 1 entries"},
        {"unsafe-name", "48: The header's catalog has an unsafe file name: \"NUL\""},
    };
    for (const auto& [file, problem] : rows) {
        const std::string problems = "\n" + Problems(ReadCorpus(std::string("Package/") + file));
        EXPECT_NE(problems.find(std::string("\n") + problem), std::string::npos) << problems;
    }
}
