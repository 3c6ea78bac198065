#include "Libs/Processes/Core/src/HeaderFile.h"

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

// What must be there; the members stand one a line so that tests can take one out.
const std::vector<std::string> RequiredMembers = {
    R"("Host":"h")",
    R"("Time":"t")",
    R"("Application":"a")",
    R"("SubmissionType":"s")",
    R"("Catalog":{"Attachments":[]})",
    R"("Exception":{"Message":"","StackTrace":""})",
    R"("Callstack":[])",
    R"("ModuleInfo":[])",
    R"("Changelist":1)",
};

std::string Object(const std::vector<std::string>& members) {
    std::string text = "{";
    for (const std::string& member : members) {
        text += (text.size() > 1 ? "," : "") + member;
    }
    return text + "}";
}

class HeaderFileTest : public testing::Test {
protected:
    std::string ReadText(const std::string& text) {
        m_folder.MakeFile("header.json", text);
        return HeaderFile::Read(m_folder.Path(), m_header).Text();
    }

    TestSupport::ScratchFolder m_folder{"ヘッダー"};
    BugHeader m_header;
};

constexpr char ParseFailure[] = "Failed to parse json header data in dump folder!";

} // namespace

TEST_F(HeaderFileTest, WhatIsReadIsWrittenAgainToTheByte) {
    ASSERT_EQ(ReadText(FullHeader), "OK");
    EXPECT_EQ(m_header.source, BugSource::Internal);
    EXPECT_EQ(m_header.catalog.attachments[1].file, "y");
    const std::string target = m_folder.MakeFolder("work"); // without a separator at its end
    m_folder.MakeFile("work/header.json", std::string(10000, 'x'));
    ASSERT_TRUE(HeaderFile::Write(target, m_header));
    EXPECT_EQ(m_folder.ReadFile("work/header.json"), FullHeader);
    std::vector<uint8_t> raw;
    ASSERT_TRUE(HeaderFile::ReadRaw(target, raw));
    EXPECT_EQ(std::string(raw.begin(), raw.end()), FullHeader);
}

TEST_F(HeaderFileTest, EachRequiredMemberMustBeThereAndNoOther) {
    EXPECT_EQ(ReadText(Object(RequiredMembers)), "OK");
    for (std::size_t i = 0; i < RequiredMembers.size(); ++i) {
        std::vector<std::string> members = RequiredMembers;
        members.erase(members.begin() + static_cast<std::ptrdiff_t>(i));
        EXPECT_EQ(ReadText(Object(members)), ParseFailure) << "without " << RequiredMembers[i];
    }
}

TEST_F(HeaderFileTest, WhatIsNoHeaderIsAParseFailure) {
    std::vector<std::string> badSource = RequiredMembers;
    badSource.emplace_back(R"("Source":"MARTIAN")");
    const std::string bad[] = {"{",
                               "[]",
                               "null",
                               "x",
                               Object(badSource),
                               std::string("{\"Host\":\"\xff\"}"),
                               std::string(500000, '['),
                               Object(RequiredMembers) + "}"};
    for (const std::string& text : bad) {
        EXPECT_EQ(ReadText(text), ParseFailure) << text.substr(0, 40);
    }
}

TEST_F(HeaderFileTest, FileFaultsHaveTheirOwnTexts) {
    std::vector<uint8_t> raw;
    EXPECT_STREQ(HeaderFile::Read(m_folder.Path(), m_header).Text(),
                 "Failed to open json header data in dump folder!");
    EXPECT_STREQ(HeaderFile::ReadRaw(m_folder.Path(), raw).Text(), "Failed to open input file");
    EXPECT_EQ(ReadText(""), "Invalid header of size 0 in dump folder!");
    EXPECT_STREQ(HeaderFile::ReadRaw(m_folder.Path(), raw).Text(), "Failed to read zero length input file!");
    EXPECT_STREQ(HeaderFile::Write(m_folder.PathOf("missing"), m_header).Text(),
                 "Failed to open json header for writing");
}

TEST_F(HeaderFileTest, AValueWithoutANameIsNotWritten) {
    m_header.source = static_cast<BugSource>(77);
    EXPECT_STREQ(HeaderFile::Write(m_folder.Path(), m_header).Text(),
                 "Failed to write json header to buffer");
    EXPECT_FALSE(m_folder.Exists("header.json"));
}
