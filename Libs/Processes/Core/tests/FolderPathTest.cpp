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
    EXPECT_EQ(FolderPath::LastComponent("C:\\dumps\\crash 1"), "crash 1");
    EXPECT_EQ(FolderPath::LastComponent("C:/dumps/太郎//"), "太郎");
    for (const char* path : {"", "\\", "C:\\", "C:\\dumps\\..", R"(C:\dumps\.\)"}) {
        EXPECT_FALSE(FolderPath::LastComponent(path)) << path;
    }
}
