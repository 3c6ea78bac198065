#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

#include <string>

#include <gtest/gtest.h>

namespace {

// The text parsed and written again, or the error and its place.
std::string Rewritten(const std::string& json) {
    JsonDocument document;
    if (const auto parsed = JsonSerialization::ParseText(json, document); !parsed) {
        return std::string(parsed.error) + "@" + std::to_string(parsed.offset);
    }
    std::string text = "old";
    const ResultCode result = JsonSerialization::WriteText(document, text);
    return result ? text : result.Text();
}

} // namespace

TEST(ParseText, TakesOneJsonTextInUtf8) {
    const std::string zeros(400, '0');
    const struct {
        std::string json;
        const char* rewritten;
    } rows[] = {
        {R"( { "a" : [ 1 , -2.5, true , null ] , "a":"\u00e9" } )",
         "{\"a\":[1,-2.5,true,null],\"a\":\"\xC3\xA9\"}"},
        {"\xEF\xBB\xBF[]", "[]"},
        {"\xEF\xBB\xBF", "The document is empty.@3"},
        {"{\"a\":1,}", "Missing a name for object member.@7"},
        {"[1] 2", "The document root must not be followed by other values.@4"},
        {std::string("[1]\0", 4), "The document root must not be followed by other values.@3"},
        {std::string("[\"a\0\"]", 6), "Missing a closing quotation mark in string.@3"},
        {"[\"\xC3(\"]", "Invalid encoding in string.@2"},
        {"[\"\xED\xA0\x80\"]", "Invalid encoding in string.@2"},
        {R"(["\ud83d\ude00\ud7ff"])", "[\"\xF0\x9F\x98\x80\xED\x9F\xBF\"]"},
        {R"(["\ud800"])", "The surrogate pair in string is invalid.@2"},
        {"[1e-0000000001,0." + zeros + "1e400]", "[0.1,0.1]"},
        {"[1" + zeros + "]", "Number too big to be stored in double.@1"},
        {"[0.00000000000001e-2147483639]", "Number too big to be stored in double.@1"},
        {"[18446744073709551615,20000000000000000000]", "[18446744073709551615,20000000000000000000.0]"},
        {"[-9223372036854775808,-9223372036854775809]", "[-9223372036854775808,-9223372036854776000.0]"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Rewritten(row.json), row.rewritten) << row.json;
    }
    for (const char* json :
         {R"(["\ud83d\ude00\ude00"])", R"({"\udc00":1})"}) { // versions of RapidJSON differ in the place
        EXPECT_TRUE(Rewritten(json).starts_with("The surrogate pair in string is invalid.@")) << json;
    }
}

TEST(ParseText, RefusesTextsOver128MiB) {
    std::string text((128u << 20) - 1, ' ');
    text += '1';
    EXPECT_EQ(Rewritten(text), "1");
    EXPECT_EQ(Rewritten(text + ' '), "The text is larger than 128 MiB.@134217728");
}

// A lead byte at the very end asks for bytes that are not there. Texts this long have a heap block of their
// own, whose end the sanitizer watches; the lengths reach each of its alignments.
TEST(ParseText, StopsAtTheEndOfACutCharacter) {
    for (std::size_t length = 100'000; length < 100'016; ++length) {
        EXPECT_EQ(Rewritten("\"" + std::string(length, 'x') + "\xF0"),
                  "Invalid encoding in string.@" + std::to_string(length + 1));
    }
}
