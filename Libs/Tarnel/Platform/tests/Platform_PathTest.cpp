#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

#include <filesystem>

#include <gtest/gtest.h>

using Platform::SystemPath;

TEST(SystemPath, RefusesWhatIsNoPath) {
    EXPECT_EQ(SystemPath(std::string("a\0b", 3)).Error(), Platform::NotText);
    EXPECT_EQ(SystemPath("a\xC3(").Error(), Platform::NotText);
    EXPECT_EQ(SystemPath("a").Within(std::string_view("b\0c", 3)).Error(), Platform::NotText);
    EXPECT_TRUE(SystemPath("a\xC3(").Below({}).Text().empty());
    EXPECT_TRUE(SystemPath("").Text().empty());
    EXPECT_TRUE(SystemPath("").Within("a").Text().empty()); // no path made of nothing
}

#if defined(_WIN32)
namespace {

std::string Utf8(const SystemPath& path) {
    std::string text;
    EXPECT_EQ(Platform::ToUtf8(path.Text(), text), Platform::NoError);
    return text;
}

} // namespace

TEST(SystemPath, IsAbsoluteAndLiteral) {
    const std::string current = R"(\\?\)" + std::filesystem::current_path().string();
    const std::string longName(400, 'n');
    const struct {
        std::string path;
        std::string expected;
    } rows[] = {
        {R"(C:\dumps)", R"(\\?\C:\dumps)"},
        {"C:/dumps//./x/../Jo\xCC\x88rg/", "\\\\?\\C:\\dumps\\Jo\xCC\x88rg"},
        {"C:\\dumps\\\xE5\xA4\xAA\xE9\x83\x8E. \\a.\\...",
         "\\\\?\\C:\\dumps\\\xE5\xA4\xAA\xE9\x83\x8E. \\a.\\..."},
        {"C:\\" + longName + "\\b", "\\\\?\\C:\\" + longName + "\\b"},
        {R"(C:\..\..\a)", R"(\\?\C:\a)"},
        {"name/nul", current + R"(\name\nul)"},
        {"..", R"(\\?\)" + std::filesystem::current_path().parent_path().string()},
        {current.substr(4, 2) + "name", current + "\\name"},
        {"//server/share/../dumps", R"(\\?\UNC\server\share\dumps)"},
        {R"(\\server\share)", R"(\\?\UNC\server\share\)"},
        {R"(\\?\C:/dumps\..\a.)", R"(\\?\C:\a.)"},
        {R"(\\?\Volume{1}\a)", R"(\\?\Volume{1}\a)"},
        {R"(\\.\C:\a)", R"(\\?\C:\a)"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Utf8(row.path), row.expected) << row.path;
    }
}

TEST(SystemPath, RootsHaveNothingAbove) {
    for (const char* root : {"C:\\", "C:\\a\\..", R"(\\server\share\)", R"(\\?\C:)", ""}) {
        EXPECT_TRUE(SystemPath(root).IsRoot()) << root;
        EXPECT_EQ(SystemPath(root).Parent().Text(), SystemPath(root).Text());
    }
    const SystemPath folder("C:\\a");
    EXPECT_FALSE(folder.IsRoot());
    EXPECT_TRUE(folder.Parent().IsRoot());
    EXPECT_EQ(Utf8(folder.Within("b/../../..\\c.")), R"(\\?\C:\a\c.)");
    EXPECT_EQ(folder.Parent().Below(L"a").Text(), folder.Text());
}
#else
TEST(SystemPath, KeepsItsBytes) {
    EXPECT_EQ(SystemPath("a/../Jo\xCC\x88rg./").Text(), "a/../Jo\xCC\x88rg.");
    EXPECT_EQ(SystemPath("/a").Parent().Text(), "/");
    EXPECT_EQ(SystemPath("a").Parent().Text(), ".");
    EXPECT_EQ(SystemPath("/a").Within("b\\../../c").Text(), "/a/c");
    EXPECT_TRUE(SystemPath("//").IsRoot());
}
#endif
