#include "Libs/Processes/Core/src/BugHeader.h"

#include <gtest/gtest.h>

#include "tests/support/ScratchFolder.h"

namespace {

// Every key, compact and in the order in which a header is written.
constexpr char FullHeader[] =
    R"({"HeaderVersion":3,"Host":"太郎-PC","Time":"now","Application":"game","Source":"INTERNAL","Project":"p",)"
    R"("SubmissionType":"crash","Line":-7,"File":"a.cpp","InstanceKey":"i","Key":"k",)"
    R"("Catalog":{"Dump":{"File":"a.dmp","MD5":"1"},"Log":{"File":"a.log","MD5":"2"},)"
    R"("Attachments":[{"File":"x","MD5":"3"},{"File":"y","MD5":""}]},)"
    R"("Exception":{"Message":"m","StackTrace":"s\n"},"StackFrameStart":1,"StackFrameEnd":-1,)"
    R"("Callstack":[18446744073709551615,0],"Session":{"Hash":9223372036854775808,"Time":-9223372036854775808},)"
    R"("ModuleInfo":[{"file":"f","baseAddr":1,"size":2,"guid1":4294967295,"guid2":65535,"guid3":4,)"
    R"("guid4":[1,2,3,4,5,6,7,255],"age":5,"pdbPath":"p"}],)"
    R"("Version":{"Major":1,"Minor":2,"Rev":3,"Build":4},"Changelist":42})";

} // namespace

TEST(BugHeader, WhatIsReadIsWrittenAgainToTheByte) {
    const TestSupport::ScratchFolder folder{"ヘッダー"};
    folder.MakeFile("header.json", std::string(5000, ' '));
    BugHeader header;
    ASSERT_STREQ(HeaderFile::Parse(FullHeader, header).Text(), "OK");
    ASSERT_STREQ(HeaderFile::Write(folder.Path(), header).Text(), "OK"); // over the longer one
    EXPECT_EQ(folder.ReadFile("header.json"), FullHeader);
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
