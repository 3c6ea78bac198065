#include "Libs/Shared/src/JsonConfig.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

struct JsonConfigTestSection {
    uint32_t interval = 250;
    std::string folder;
};
Reflection_DeclareType(JsonConfigTestSection);
Reflection_DefineType(JsonConfigTestSection,
                      Reflection_Field(interval, "Interval", Reflection::OptionalAttribute()),
                      Reflection_Field(folder, "Folder"));

namespace {

class JsonConfig : public testing::Test {
protected:
    std::string Write(const std::string& content) { return m_folder.MakeFile("Jörg.json", content); }

    TestSupport::ScratchFolder m_folder;
    TestSupport::LogCapture m_log;
};

} // namespace

TEST_F(JsonConfig, LoadsAFileWithAndWithoutByteOrderMark) {
    for (const char* content : {R"({"Watcher":{}})", "\xEF\xBB\xBF{\"Watcher\":{}}"}) {
        JsonDocument document;
        EXPECT_STREQ("OK", LoadJsonConfig(Write(content), document).Text());
        EXPECT_TRUE(document.HasMember("Watcher"));
    }
    EXPECT_TRUE(m_log.Entries().empty());
}

TEST_F(JsonConfig, SaysWhatIsWrongWithTheFile) {
    JsonDocument document;
    EXPECT_STREQ("Failed to open json config file",
                 LoadJsonConfig(m_folder.PathOf("missing.json"), document).Text());
    EXPECT_STREQ("Failed to read zero length json config file", LoadJsonConfig(Write(""), document).Text());
    EXPECT_TRUE(m_log.Entries().empty());

    const std::string path = Write("\xEF\xBB\xBF{\"a\":\r\n nil}");
    EXPECT_STREQ("Failed to decode json header data!", LoadJsonConfig(path, document).Text());
    EXPECT_EQ(
        std::vector<std::string>{" Failed to parse file \"" + path + "\" at position 12. Invalid value."},
        m_log.Errors());
}

TEST_F(JsonConfig, ReadsTheSectionOverTheDefaults) {
    const struct {
        const char* config;
        const char* result;
        uint32_t interval;
        const char* folder;
    } rows[] = {
        {R"({"A":{"Folder":"f","Interval":5}})", "OK", 5, "f"},
        {R"({"A":{"Folder":"f"}})", "OK", 250, "f"},
        {R"({"B":{"Folder":"f"}})", "configuration section not found", 1, "before"},
        {R"([{"A":1}])", "configuration section not found", 1, "before"},
        {R"({"A":[]})", "configuration section found is not an object", 1, "before"},
        {R"({"A":{"Folder":7}})", "Field not string", 250, ""},
    };
    for (const auto& row : rows) {
        JsonDocument document;
        ASSERT_STREQ("OK", LoadJsonConfig(Write(row.config), document).Text());
        JsonConfigTestSection section{1, "before"};
        EXPECT_STREQ(row.result, ReadConfigSection(document, "A", section).Text()) << row.config;
        EXPECT_EQ(row.interval, section.interval) << row.config;
        EXPECT_EQ(row.folder, section.folder) << row.config;
    }
}
