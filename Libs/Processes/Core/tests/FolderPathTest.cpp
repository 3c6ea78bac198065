#include "Libs/Processes/Core/src/FolderPath.h"

#include <gtest/gtest.h>

TEST(FolderPath, JoinAddsASeparatorOnlyWhenNoneIsThere) {
    const std::string separator(1, FolderPath::Separator);
    EXPECT_EQ(FolderPath::Join("C:\\a", "b"), "C:\\a" + separator + "b");
    EXPECT_EQ(FolderPath::Join("C:\\a\\", "b"), "C:\\a\\b");
    EXPECT_EQ(FolderPath::Join("C:/a/", "b"), "C:/a/b");
    EXPECT_EQ(FolderPath::Join("C:\\a\\", ""), "C:\\a\\");
    EXPECT_EQ(FolderPath::Join("a", "b\\c"), "a" + separator + "b" + separator + "c");
}

TEST(FolderPath, DrivesAndLeadingSeparatorsAreNotRelative) {
    for (const char* path :
         {"C:\\dumps", "C:/dumps", "c:dumps", "C:", "\\dumps", "/dumps", R"(\\server\share)"}) {
        EXPECT_FALSE(FolderPath::IsRelative(path)) << path;
        EXPECT_EQ(FolderPath::Resolve(path, "D:\\app\\"), path);
    }
    for (const char* path : {"", "dumps", "a/b", ".\\dumps", "..\\dumps", "太郎"}) {
        EXPECT_TRUE(FolderPath::IsRelative(path)) << path;
        EXPECT_EQ(FolderPath::Resolve(path, "D:\\app\\"), std::string("D:\\app\\") + path);
    }
}

TEST(FolderPath, LastComponentIsANameOrNothing) {
    const struct {
        const char* path;
        const char* name;
    } rows[] = {{"C:\\dumps\\crash 1", "crash 1"},
                {R"(C:\dumps\crash\)", "crash"},
                {"C:/dumps/太郎//", "太郎"},
                {"crash", "crash"},
                {"", nullptr},
                {"\\", nullptr},
                {"C:\\", nullptr},
                {"C:\\dumps\\..", nullptr},
                {R"(C:\dumps\.\)", nullptr}};
    for (const auto& row : rows) {
        const auto name = FolderPath::LastComponent(row.path);
        EXPECT_EQ(name.has_value(), row.name != nullptr) << row.path;
        EXPECT_EQ(name.value_or(""), row.name ? row.name : "") << row.path;
    }
}
