#include "Libs/Shared/src/JsonConfig.h"

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/tests/ScratchFolder.h"

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
    JsonConfig() : m_previous(EXP_GetLogEventCallback()) {
        s_errors.clear();
        EXP_SetLogEventCallback([](const wchar_t* log, const char* data, uint32_t length, int) {
            const std::string entry(data, length);
            EXPECT_STREQ(Platform::ErrorLog, log);
            s_errors.push_back(entry.substr(entry.find('\t') + 1));
        });
    }
    ~JsonConfig() override { EXP_SetLogEventCallback(m_previous); }

    std::string Write(const std::string& content) {
        std::ofstream(m_folder.Path() / u8"J\u00f6rg.json", std::ios::binary) << content;
        return m_folder.Utf8("J\xC3\xB6rg.json");
    }

    inline static std::vector<std::string> s_errors;
    ScratchFolder m_folder{"JsonConfigTest"};

private:
    Platform::LogEventCallback m_previous;
};

} // namespace

TEST_F(JsonConfig, LoadsAFileWithAndWithoutByteOrderMark) {
    for (const char* content : {R"({"Watcher":{}})", "\xEF\xBB\xBF{\"Watcher\":{}}"}) {
        JsonDocument document;
        EXPECT_STREQ("OK", LoadJsonConfig(Write(content), document).Text());
        EXPECT_TRUE(document.HasMember("Watcher"));
    }
    EXPECT_TRUE(s_errors.empty());
}

TEST_F(JsonConfig, SaysWhatIsWrongWithTheFile) {
    JsonDocument document;
    EXPECT_STREQ("Failed to open json config file",
                 LoadJsonConfig(m_folder.Utf8("missing.json"), document).Text());
    EXPECT_STREQ("Failed to read zero length json config file", LoadJsonConfig(Write(""), document).Text());
    EXPECT_TRUE(s_errors.empty());

    const std::string path = Write("\xEF\xBB\xBF{\"a\":\r\n nil}");
    EXPECT_STREQ("Failed to decode json header data!", LoadJsonConfig(path, document).Text());
    EXPECT_EQ(
        std::vector<std::string>{" Failed to parse file \"" + path + "\" at position 12. Invalid value."},
        s_errors);
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
