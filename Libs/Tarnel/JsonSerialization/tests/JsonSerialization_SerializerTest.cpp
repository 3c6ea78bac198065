#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Tarnel/JsonSerialization/tests/JsonTestRecords.h"
#include "tests/support/LogCapture.h"
#include "tests/support/OnThreads.h"

namespace {

using JsonSerialization::GetSerializer;
using JsonSerialization::ReadRecord;
using JsonSerialization::WriteRecord;

class Serializer : public testing::Test {
protected:
    template <class T>
    static std::string ReadInto(T& record, const std::string& json) {
        JsonDocument document;
        EXPECT_TRUE(JsonSerialization::ParseText(json, document)) << json;
        return ReadRecord(document, record).Text();
    }
    template <class T>
    static std::string Written(const T& record) {
        JsonDocument document;
        std::string text;
        EXPECT_STREQ("OK", WriteRecord(record, document).Text());
        EXPECT_STREQ("OK", JsonSerialization::WriteText(document, text).Text());
        return text;
    }

    TestSupport::LogCapture m_log;
};

// Reads one member and writes that member back, so that a row shows what the record then held.
std::string RoundTrip(const std::string& member, const std::string& value) {
    JsonDocument document;
    if (!JsonSerialization::ParseText("{\"" + member + "\":" + value + "}", document)) {
        return "no JSON";
    }
    JsonValues record;
    if (const ResultCode result = ReadRecord(document, record); !result) {
        return result.Text();
    }
    JsonDocument written;
    JsonDocument part;
    std::string text;
    if (const ResultCode result = WriteRecord(record, written); !result) {
        return result.Text();
    }
    part.CopyFrom(written[member.c_str()], part.GetAllocator());
    const ResultCode result = JsonSerialization::WriteText(part, text);
    return result ? text : result.Text();
}

} // namespace

TEST_F(Serializer, MapsValuesOfEveryType) {
    const struct {
        const char* member;
        const char* value;
        const char* held; // or the failure
    } rows[] = {
        {"bool", "false", "false"},
        {"bool", "null", "false"},
        {"bool", "1", "Field not bool"},
        {"int8", "-128", "-128"},
        {"int8", "300", "44"},
        {"int8", "null", "0"},
        {"int32", "-2147483648", "-2147483648"},
        {"int32", "2147483648", "Field not integer"},
        {"int32", "1.0", "Field not integer"},
        {"int64", "-9223372036854775808", "-9223372036854775808"},
        {"int64", "9223372036854775808", "Field not integer"},
        {"uint8", "258", "2"},
        {"uint16", "65537", "1"},
        {"uint32", "4294967295", "4294967295"},
        {"uint32", "4294967296", "Field not unsigned integer"},
        {"uint32", "-1", "Field not unsigned integer"},
        {"uint64", "18446744073709551615", "18446744073709551615"},
        {"uint64", "18446744073709551616", "Field not unsigned integer"},
        {"float", "0.5", "0.5"},
        {"float", "3", "3.0"},
        {"float", "null", "0.0"},
        {"float", "1e300", "Failed to write json text"}, // read as infinite
        {"double", "-2", "-2.0"},
        {"double", "1e-300", "1e-300"},
        {"double", "\"2\"", "Field not number"},
        {"text", "\"a\\u0000b\"", "\"a\\u0000b\""},
        {"text", "null", "\"\""},
        {"text", "7", "Field not string"},
        {"basic", "\"new\"", "\"new\""},
        {"wide", "\"J\xC3\xB6rg \xF0\x9F\x98\x80\"", "\"J\xC3\xB6rg \xF0\x9F\x98\x80\""},
        {"wide", "null", "\"\""},
        {"wide", "{}", "Field not string"},
        {"enum", "\"RED\"", "\"RED\""},
        {"enum", "\"red\"", "Unknown enum value found in data"},
        {"enum", "0", "Unknown enum value found in data"},
        {"enum", "null", "Unknown enum value found in data"},
        {"vector", "[1,2]", "[1,2]"},
        {"vector", "[]", "[]"},
        {"vector", "null", "Not an array"},
        {"vector", "[1,\"2\",3]", "Field not integer"},
        {"map", "{\"b\":[\"x\"],\"a\":[]}", "{\"a\":[],\"b\":[\"x\"]}"},
        {"map", "{\"a\":[\"x\"],\"a\":[\"y\"]}", "{\"a\":[\"y\"]}"},
        {"map", "{\"a\":1}", "Not an array"},
        {"map", "[]", "Element is not an object"},
        {"char", "\"c\"", "Unsupported type"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.held, RoundTrip(row.member, row.value)) << row.member << ": " << row.value;
    }
}

TEST_F(Serializer, FloatBeyondItsRangeIsInfinite) {
    JsonValues values;
    EXPECT_EQ("OK", ReadInto(values, "{\"float\":-1e300}"));
    EXPECT_TRUE(std::isinf(values.real32) && values.real32 < 0);
}

TEST_F(Serializer, MandatoryFieldMustBeThere) {
    JsonShape shape;
    EXPECT_EQ("Field not found in json", ReadInto(shape, R"({"X":1,"Y":2,"Name":"s"})"));
    EXPECT_EQ(std::vector<std::string>{" Failed to find field \"Corners\" in json data"},
              m_log.Texts(Platform::EngineLog));
    EXPECT_EQ(2, shape.y) << "what comes before stays read";
}

// However the members are ordered, repeated or mixed with unknown ones; of a repeated member the first
// counts.
TEST_F(Serializer, FindsMembersInAnyOrder) {
    for (const char* json : {R"({"X":1,"Y":2})", R"({"Y":2,"X":1})", R"({"":0,"X":1,"Z":{},"Y":2,"W":[]})",
                             R"({"X":1,"X":3,"Y":2,"Y":4})", R"({"Y":2,"X":1,"Y":4})"}) {
        JsonPoint point;
        EXPECT_EQ("OK", ReadInto(point, json)) << json;
        EXPECT_EQ(R"({"X":1,"Y":2})", Written(point)) << json;
    }
}

TEST_F(Serializer, RecordOfAnotherKindFailsAtItsFirstMandatoryField) {
    for (const char* value : {"null", "5", "[]", "\"text\"", "true"}) {
        JsonPoint point;
        EXPECT_EQ("Field not found in json", ReadInto(point, value)) << value;
        JsonShape shape;
        const std::string json = std::string(R"({"X":1,"Y":2,"Corners":[{"X":3,"Y":4},)") + value + "]}";
        EXPECT_EQ("Field not found in json", ReadInto(shape, json)) << value;
        ASSERT_EQ(2u, shape.corners.size());
        EXPECT_EQ(4, shape.corners[0].y) << "elements before the failing one stay read";
    }
    EXPECT_EQ(10u, m_log.Texts(Platform::EngineLog).size());
}

TEST_F(Serializer, WritesTheBaseFirstAndNothingBetween) {
    JsonShape shape;
    shape.x = -1;
    shape.name = "a \"b\"\n\x01";
    shape.corners = {{1, 2}, {}};
    EXPECT_EQ(R"({"X":-1,"Y":0,"Name":"a \"b\"\n\u0001","Corners":[{"X":1,"Y":2},{"X":0,"Y":0}],)"
              R"("Centre":{"X":7,"Y":7}})",
              Written(shape));
}

TEST_F(Serializer, AttributesChangeWhatIsReadAndWritten) {
    JsonRemarks remarks;
    EXPECT_EQ("Field not found in json", ReadInto(remarks, R"({"Own":"n","ReadOnly":"n","Shouted":"n"})"));
    EXPECT_EQ("OK", ReadInto(remarks, R"({"InData":"n1","Own":"n2","ReadOnly":"n3","WriteOnly":"n4",
                                          "Ignored":"n5","Shouted":"n6"})"));
    EXPECT_EQ("n1", remarks.renamed);
    EXPECT_EQ("n3", remarks.readOnly);
    EXPECT_EQ("N6", remarks.shouted);
    EXPECT_EQ(R"({"InData":"n1","WriteOnly":"wo","Shouted":"N6"})", Written(remarks));
    EXPECT_EQ("i", remarks.ignored);
}

TEST_F(Serializer, TypesOwnFunctionsGoFirst) {
    JsonRelease release;
    EXPECT_EQ("OK", ReadInto(release, R"({"Version":"10.4"})"));
    EXPECT_EQ(R"({"Version":"10.4"})", Written(release));
    EXPECT_EQ("Not a string value", ReadInto(release, R"({"Version":null})"));
    EXPECT_EQ("Not a version", ReadInto(release, R"({"Version":"ten"})"));
}

TEST_F(Serializer, UnlistedEnumeratorIsWrittenAndFails) {
    JsonValues values;
    values.colour = JsonColour::Unlisted;
    JsonDocument document;
    EXPECT_STREQ("Unknown enum value found in type", WriteRecord(values, document).Text());
    EXPECT_STREQ("UNKNOWN_ENUM_VALUE", document["enum"].GetString());
}

TEST_F(Serializer, WritingNeedsAnAllocator) {
    JsonSerialization::Context context;
    JsonValue value;
    const JsonPoint point;
    EXPECT_STREQ("No allocator in context",
                 GetSerializer().Write(&Reflection::TypeOf<JsonPoint>, &point, value, context).Text());
    const std::string text = "text";
    EXPECT_STREQ("No allocator in context",
                 GetSerializer().Write(&Reflection::TypeOf<std::string>, &text, value, context).Text());
    const int32_t number = 5;
    EXPECT_STREQ("OK", GetSerializer().Write(&Reflection::TypeOf<int32_t>, &number, value, context).Text());
}

TEST_F(Serializer, ThreadsShareThePlans) {
    TestSupport::OnThreads(6, [](int) {
        for (int i = 0; i < 200; ++i) {
            JsonShape shape;
            EXPECT_EQ("OK", ReadInto(shape, R"({"X":1,"Y":2,"Corners":[{"Y":3,"X":4}]})"));
            EXPECT_EQ(R"({"X":1,"Y":2,"Name":"unnamed","Corners":[{"X":4,"Y":3}],"Centre":{"X":7,"Y":7}})",
                      Written(shape));
        }
    });
    EXPECT_TRUE(m_log.Entries().empty()) << "what is optional may be missing in silence";
}
