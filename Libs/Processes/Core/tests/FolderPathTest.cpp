#include "Libs/Processes/Core/src/FolderPath.h"

#include <gtest/gtest.h>

TEST(FolderPath, DrivesAndLeadingSeparatorsAreNotRelative) {
    for (const char* path : {"C:/dumps", "c:dumps", "C:", "\\dumps", "/dumps", R"(\\server\share)"}) {
        EXPECT_EQ(FolderPath::Resolve(path, "D:\\app\\"), path);
    }
    for (const char* path : {"", "dumps", ".\\dumps", "..\\dumps", "太郎"}) {
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
                {"", nullptr},
                {"\\", nullptr},
                {"C:\\", nullptr},
                {"C:\\dumps\\..", nullptr},
                {R"(C:\dumps\.\)", nullptr}};
    for (const auto& row : rows) {
        const auto name = FolderPath::LastComponent(row.path);
        EXPECT_EQ(name.value_or("none"), row.name ? row.name : "none") << row.path;
    }
}
