#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

namespace {

std::string Rewritten(const std::string& json) {
    JsonDocument document;
    if (!JsonSerialization::ParseText(json, document)) {
        return std::string(JsonSerialization::ParseErrorText(document)) + "@" +
               std::to_string(document.GetErrorOffset());
    }
    std::string text = "old";
    const ResultCode result = JsonSerialization::WriteText(document, text);
    return result ? text : result.Text();
}

std::string Repeated(const std::string& part, std::size_t count) {
    std::string text;
    text.reserve(part.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

} // namespace

TEST(ParseText, TakesOneJsonTextInUtf8) {
    const struct {
        std::string json;
        const char* rewritten; // or the error with its place
    } rows[] = {
        {" { \"a\" : [ 1 , -2.5, true , null ] , \"a\":\"\\u00e9\" } ",
         "{\"a\":[1,-2.5,true,null],\"a\":\"\xC3\xA9\"}"},
        {"\xEF\xBB\xBF[]", "[]"},
        {"\xEF\xBB\xBF", "The document is empty.@3"},
        {"\xEF[]", "Invalid value.@0"},
        {"", "The document is empty.@0"},
        {"{\"a\":1,}", "Missing a name for object member.@7"},
        {"[1] 2", "The document root must not be followed by other values.@4"},
        {"[\"\xC3(\"]", "Invalid encoding in string.@2"},
        {"[\"\xED\xA0\x80\"]", "Invalid encoding in string.@2"},
        {"[\"\\ud800\"]", "The surrogate pair in string is invalid.@2"},
        {"[\"\\udc00\"]", "The surrogate pair in string is invalid.@2"},
        {R"(["\ud83d\ude00\ude00\ude00"])", "The surrogate pair in string is invalid.@14"},
        {"[1e309]", "Number too big to be stored in double.@1"},
        {"[\"a\tb\"]", "Invalid escape character in string.@3"},
        {"[//\n1]", "Invalid value.@1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.rewritten, Rewritten(row.json)) << row.json;
    }
}

// What must not reach the parser as it is, at every distance from the start: the text is looked through by
// blocks.
TEST(ParseText, MissesNothingAtAnyPlace) {
    for (std::size_t blanks = 0; blanks < 600; ++blanks) {
        const std::string before(blanks, ' ');
        EXPECT_EQ("0.0", Rewritten(before + "1e-99999999999999999999")) << blanks;
        EXPECT_EQ("The surrogate pair in string is invalid.@" + std::to_string(blanks + 1),
                  Rewritten(before + R"("\udc00")"))
            << blanks;
    }
}

TEST(ParseText, SurvivesNumbersOfEverySize) {
    const std::string zeros(400, '0');
    const struct {
        std::string number;
        const char* rewritten;
    } rows[] = {
        {"0.00000000000001e-2147483639", "[0.0]"},
        {"1E-99999999999999999999", "[0.0]"},
        {"1e-0000000001", "[0.1]"},
        {"0." + zeros + "1e400", "[0.1]"},
        {"1" + zeros, "Number too big to be stored in double.@1"},
        {"18446744073709551616", "[18446744073709553000.0]"},
        {"-9223372036854775809", "[-9223372036854776000.0]"},
        {"\"e-123456789012\",1e-2147483639,\"\\\"e-123456789012\"",
         "[\"e-123456789012\",0.0,\"\\\"e-123456789012\"]"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.rewritten, Rewritten("[" + row.number + "]")) << row.number;
    }
}

TEST(ParseText, SurvivesAnyDepth) {
    constexpr std::size_t Depth = 500'000;
    const std::string arrays = Repeated("[", Depth) + Repeated("]", Depth);
    EXPECT_EQ(arrays, Rewritten(arrays));
    const std::string objects = Repeated("{\"a\":", Depth) + "1" + Repeated("}", Depth);
    EXPECT_EQ(objects, Rewritten(objects));
    EXPECT_EQ("Invalid value.@500000", Rewritten(Repeated("[", Depth)));
}

// Shallow documents are parsed in another way than deep ones.
TEST(ParseText, GivesTheSameAtEveryDepth) {
    for (std::size_t depth = 28; depth < 36; ++depth) {
        const std::string json =
            Repeated("[{\"\xC3\xA9\\n\":", depth / 2) + "\"\\u00e9\"" + Repeated("}]", depth / 2);
        const std::string rewritten =
            Repeated("[{\"\xC3\xA9\\n\":", depth / 2) + "\"\xC3\xA9\"" + Repeated("}]", depth / 2);
        EXPECT_EQ(rewritten, Rewritten(json)) << depth;
    }
}

TEST(ParseText, ReplacesWhatTheDocumentHeld) {
    JsonDocument document;
    EXPECT_FALSE(JsonSerialization::ParseText("[", document));
    EXPECT_TRUE(JsonSerialization::ParseText("[1]", document));
    EXPECT_FALSE(document.HasParseError());
    EXPECT_TRUE(JsonSerialization::ParseText("{\"a\":2}", document));
    EXPECT_TRUE(document.IsObject());
}

TEST(JsonDocument, MisuseIsAssertedAndGoesOn) {
    JsonDocument document;
    ASSERT_TRUE(JsonSerialization::ParseText("{\"a\":1}", document));
    const AssertCapture capture;
    EXPECT_TRUE(document["b"].IsNull());
    EXPECT_EQ(std::vector<std::string>{"false|"}, capture.Texts());
}

TEST(ParseText, SurvivesAStringWithoutEnd) {
    const std::string text(30'000'000, 'x'); // NOLINT(bugprone-string-constructor): so long it has to be
    EXPECT_EQ("Missing a closing quotation mark in string.@30000002", Rewritten("[\"" + text));
    EXPECT_EQ("[\"" + text + "\"]", Rewritten("[\"" + text + "\"]"));
}

// A header cut short anywhere is refused, and never read past its end.
TEST(ParseText, RefusesEveryPrefix) {
    const std::string whole = R"({"a":[1.5e3,true,null,"\u00e9\n"],"b":{"c":-12,"d":false}})";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto prefix = std::make_unique<char[]>(length);
        whole.copy(prefix.get(), length);
        JsonDocument document;
        EXPECT_FALSE(JsonSerialization::ParseText({prefix.get(), length}, document)) << length;
        EXPECT_LE(document.GetErrorOffset(), length);
    }
}
