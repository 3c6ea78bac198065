#include "Libs/Framework/Core/src/PlatformHelpers_Version.h"

#include <gtest/gtest.h>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "tests/support/ScratchFolder.h"

using PlatformHelpers::ModuleVersion;

namespace {

// Programs beside this one, made from version resources of their own.
std::string Neighbour(const char* name) {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return TestSupport::ScratchFolder::ToUtf8(std::filesystem::path(path).parent_path() / name);
}

std::vector<uint32_t> Numbers(const ModuleVersion& version) {
    return {version.major, version.minor, version.build, version.revision};
}

TEST(GetModuleVersion, ReadsNumbersAndChangelist) {
    ModuleVersion version;
    uint32_t changelist = 0;
    EXPECT_STREQ(
        PlatformHelpers::GetModuleVersion(Neighbour("VersionWithChangelist.exe"), version, changelist).Text(),
        "OK");
    EXPECT_EQ(Numbers(version), (std::vector<uint32_t>{2, 0, 65535, 8}));
    EXPECT_EQ(changelist, 1234u);
}

TEST(GetModuleVersion, WithoutAChangelistTheNumbersAreThere) {
    ModuleVersion version;
    uint32_t changelist = 7;
    EXPECT_STREQ(
        PlatformHelpers::GetModuleVersion(Neighbour("VersionWithoutChangelist.exe"), version, changelist)
            .Text(),
        "Failed to find changelist in resources for localized version info");
    EXPECT_EQ(Numbers(version), (std::vector<uint32_t>{2, 0, 0, 8}));
    EXPECT_EQ(changelist, 0u);
}

TEST(GetModuleVersion, FailuresHaveTheirTexts) {
    ModuleVersion version{1, 2, 3, 4};
    uint32_t changelist = 7;
    EXPECT_STREQ(PlatformHelpers::GetModuleVersion(Neighbour("none.exe"), version, changelist).Text(),
                 "File version info size was incorrect");
    EXPECT_EQ(Numbers(version), (std::vector<uint32_t>{0, 0, 0, 0}));
    EXPECT_STREQ(PlatformHelpers::GetModuleVersion("\xFF", version, changelist).Text(),
                 "GetModuleVersion failed! Failed to convert module path from multi-byte to wide string!");
}

TEST(ParseChangelist, TakesTheNumberBehindTheFirstBracket) {
    const struct {
        const char* text;
        std::optional<uint32_t> changelist;
    } rows[] = {
        {"2.0.0.8 (1234)", 1234},
        {"(0)", 0},
        {"1.0 (4294967295", 4294967295},
        {"1.0 (12) (34)", 12},
        {"2.0.0.8", std::nullopt},
        {"1.0 (beta)", std::nullopt},
        {"1.0 (4294967296)", std::nullopt},
        {"1.0 (", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PlatformHelpers::ParseChangelist(row.text), row.changelist) << row.text;
    }
}

TEST(GetUserFolder, NamesAFolderUnderDocuments) {
    std::string folder;
    EXPECT_STREQ(PlatformHelpers::GetUserFolder("", folder).Text(), "Application data folder is not set");
    ASSERT_STREQ(PlatformHelpers::GetUserFolder("My G\xC3\xA4me", folder).Text(), "OK");
    ASSERT_TRUE(folder.ends_with("\\My G\xC3\xA4me")) << folder;
    EXPECT_TRUE(PlatformHelpers::PathExists(folder.substr(0, folder.rfind('\\'))));
}

} // namespace
