#include "Libs/Processes/Core/src/InstanceKey.h"

#include <gtest/gtest.h>

#include "Libs/Processes/Core/src/BugHeader.h"

TEST(InstanceKey, IsTheTextBeforeTheLastEnding) {
    const struct {
        const char* file;
        const char* key; // null for none
    } rows[] = {
        {"abc_Minidump.dmp", "abc"},
        {"abc.dmp", "abc"},
        {"a.dmp.dmp", "a.dmp"},
        {"a_Minidump.dmp_Minidump.dmp", "a_Minidump.dmp"},
        {"a_Minidump.dmp.dmp", "a"},
        {"a.dmp.bak", "a"},
        {".dmp", ""},
        {"sub/abc.dmp", "sub/abc"},
        {"abc_minidump.dmp", "abc_minidump"},
        {"abc.DMP", nullptr},
        {"abc.txt", nullptr},
        {"", nullptr},
    };
    for (const auto& row : rows) {
        const auto key = InstanceKeyOfFile(row.file);
        EXPECT_EQ(key.has_value(), row.key != nullptr) << row.file;
        EXPECT_EQ(key.value_or(""), row.key ? row.key : "") << row.file;
    }
}

TEST(InstanceKey, ComesFromTheDumpOrElseTheFirstAttachmentThatGivesOne) {
    const struct {
        const char* dump;
        std::vector<Attachment> attachments;
        const char* key;
    } rows[] = {
        {"a_Minidump.dmp", {{"b.dmp", ""}}, "a"},
        {"a.mdmp", {{"b.dmp", ""}}, ""},
        {"", {{"a.txt", ""}, {"", ""}, {"b.dmp", ""}, {"c_Minidump.dmp", ""}}, "b"},
        {"", {}, ""},
    };
    for (const auto& row : rows) {
        const Catalog catalog{.dump = {row.dump, ""}, .log = {"log.dmp", ""}, .attachments = row.attachments};
        EXPECT_EQ(DeriveInstanceKey(catalog), row.key) << row.dump;
    }
}
