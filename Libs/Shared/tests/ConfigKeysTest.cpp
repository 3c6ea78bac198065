#include <gtest/gtest.h>

#include "Libs/Shared/src/JsonConfig.h"

TEST(ConfigKeys, TheNearestKeyIsTheOneThatWasMeant) {
    const std::vector<std::string_view> known = {"WatcherName", "AskPermission", "AccessKey"};
    const struct {
        const char* key;
        const char* nearest;
    } rows[] = {{"askpermission", "AskPermission"},
                {"AskPermision", "AskPermission"},
                {"AcessKeys", "AccessKey"},
                {"Watcher", "WatcherName"},
                {"", "AccessKey"},
                {"ASSK_PERMISSION", "AskPermission"}};
    for (const auto& row : rows) {
        EXPECT_EQ(ConfigKeys::Nearest(row.key, known), row.nearest) << row.key;
    }
    EXPECT_EQ(ConfigKeys::Nearest("Key", {}), "");
}
