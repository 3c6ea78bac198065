#include "Libs/Processes/Core/src/BugHeader.h"

#include <gtest/gtest.h>

#include "tests/support/Corpus.h"
#include "tests/support/ScratchFolder.h"

// Every key, compact and in the order in which a header is written.
TEST(BugHeader, WhatIsReadIsWrittenAgainToTheByte) {
    const TestSupport::ScratchFolder folder{"ヘッダー"};
    const std::string whole = ReadCorpus("Json/full");
    folder.MakeFile("header.json", std::string(5000, ' '));
    BugHeader header;
    ASSERT_STREQ(HeaderFile::Parse(whole, header).Text(), "OK");
    ASSERT_STREQ(HeaderFile::Write(folder.Path(), header).Text(), "OK"); // over the longer one
    EXPECT_EQ(folder.ReadFile("header.json"), whole);
}

TEST(BugHeader, TheKeyIsTheTextBeforeTheLastEnding) {
    const struct {
        const char* dump;
        std::vector<Attachment> attachments;
        const char* key;
    } rows[] = {
        {"abc_Minidump.dmp", {{"b.dmp", ""}}, "abc"},
        {"a_Minidump.dmp_Minidump.dmp", {}, "a_Minidump.dmp"},
        {"a_Minidump.dmp.dmp", {}, "a"},
        {"abc_minidump.dmp.bak", {}, "abc_minidump"},
        {"abc.DMP", {{"b.dmp", ""}}, ""}, // a dump without a key is not passed over
        {"", {{"a.txt", ""}, {"", ""}, {"b.dmp", ""}, {"c_Minidump.dmp", ""}}, "b"},
    };
    for (const auto& row : rows) {
        const Catalog catalog{.dump = {row.dump, ""}, .log = {"log.dmp", ""}, .attachments = row.attachments};
        EXPECT_EQ(catalog.DeriveInstanceKey(), row.key) << row.dump;
    }
}
