#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/LogCapture.h"
#include "tests/support/OnThreads.h"

enum class JsonColour : uint16_t { Red, Green = 7, Unlisted = 9 };
Reflection_DeclareEnum(JsonColour);
Reflection_DefineEnum(JsonColour, Reflection_Enumerator(JsonColour::Red, "RED"),
                      Reflection_Enumerator(JsonColour::Green, "GREEN"));

namespace {

using JsonSerialization::ReadRecord;
using JsonSerialization::ReadSource;
using JsonSerialization::WriteTarget;

ResultCode ReadNegated(void* object, const ReadSource& source) {
    *static_cast<int32_t*>(object) = -source.value.GetInt();
    return Platform::Success;
}

ResultCode WriteNegated(const void* object, const WriteTarget& target) {
    target.value.SetInt(-*static_cast<const int32_t*>(object));
    return Platform::Success;
}

template <class T>
std::string Written(const T& value) {
    JsonDocument document;
    std::string text;
    const ResultCode written = JsonSerialization::WriteRecord(value, document);
    const ResultCode result = written ? JsonSerialization::WriteText(document, text) : written;
    return result ? text : result.Text();
}

// The JSON read as a T and written again, or the failure.
template <class T>
std::string Rewritten(const char* json) {
    JsonDocument document;
    EXPECT_TRUE(JsonSerialization::ParseText(json, document)) << json;
    T value{};
    const ResultCode result = ReadRecord(document, value);
    return result ? Written(value) : result.Text();
}

} // namespace

struct JsonPoint {
    int32_t x = 0;
};
Reflection_DeclareType(JsonPoint);
Reflection_DefineType(JsonPoint, Reflection_Field(x, "X"));

struct JsonShape : JsonPoint {
    int32_t renamed = 1, readOnly = 2, writeOnly = 3, ignored = 4, negated = 5;
    std::vector<JsonPoint> corners;
};
Reflection_DeclareType(JsonShape);
Reflection_DefineType(JsonShape, Reflection_Base(JsonPoint),
                      Reflection_Field(renamed, "Own", Reflection::NameAttribute("InData")),
                      Reflection_Field(readOnly, "ReadOnly", Reflection::NoWriteAttribute()),
                      Reflection_Field(writeOnly, "WriteOnly", Reflection::NoReadAttribute()),
                      Reflection_Field(ignored, "Ignored", Reflection::IgnoreAttribute()),
                      Reflection_Field(negated, "Negated", Reflection::DeserializationAttribute(&ReadNegated),
                                       Reflection::SerializationAttribute(&WriteNegated)),
                      Reflection_Field(corners, "Corners", Reflection::OptionalAttribute()));

TEST(Serializer, MapsValuesOfEveryType) {
    using Names = std::map<std::string, std::vector<std::string>>;
    const struct {
        std::string (*rewrite)(const char* json);
        const char* json;
        const char* rewritten;
    } rows[] = {
        {&Rewritten<bool>, "null", "false"},
        {&Rewritten<bool>, "1", "Field not bool"},
        {&Rewritten<int8_t>, "300", "44"},
        {&Rewritten<int32_t>, "2147483648", "Field not integer"},
        {&Rewritten<int64_t>, "-9223372036854775808", "-9223372036854775808"},
        {&Rewritten<int64_t>, "9223372036854775808", "Field not integer"},
        {&Rewritten<uint32_t>, "4294967296", "Field not unsigned integer"},
        {&Rewritten<uint64_t>, "18446744073709551615", "18446744073709551615"},
        {&Rewritten<uint64_t>, "-1", "Field not unsigned integer"},
        {&Rewritten<float>, "1e300", "Field not number"},
        {&Rewritten<double>, "1e-300", "1e-300"},
        {&Rewritten<std::string>, R"("a\u0000b\n")", R"("a\u0000b\n")"},
        {&Rewritten<std::string>, "null", "\"\""},
        {&Rewritten<std::string>, "7", "Field not string"},
        {&Rewritten<String::BasicT<String::Encoding::UTF8>>, "\"new\"", "\"new\""},
        {&Rewritten<std::wstring>, "\"J\xC3\xB6rg \xF0\x9F\x98\x80\"", "\"J\xC3\xB6rg \xF0\x9F\x98\x80\""},
        {&Rewritten<JsonColour>, "\"GREEN\"", "\"GREEN\""},
        {&Rewritten<std::vector<int>>, "null", "Not an array"},
        {&Rewritten<Names>, R"({"b":["x"],"a":["y"],"b":[]})", R"({"a":["y"],"b":[]})"},
        {&Rewritten<Names>, "[]", "Element is not an object"},
        {&Rewritten<char>, "\"c\"", "Unsupported type"},
        {&Rewritten<JsonShape>, R"({"Negated":6,"X":1,"InData":7,"ReadOnly":8,"Z":{},"X":2})",
         R"({"X":1,"InData":7,"WriteOnly":3,"Negated":6,"Corners":[]})"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.rewrite(row.json), row.rewritten) << row.json;
    }
}

TEST(Serializer, KeepsWhatItReadBeforeTheFirstFailure) {
    const TestSupport::LogCapture log;
    JsonDocument document;
    ASSERT_TRUE(JsonSerialization::ParseText(
        R"({"X":9,"InData":7,"ReadOnly":8,"Negated":6,"Corners":[{"X":5},null]})", document));
    JsonShape shape;
    EXPECT_STREQ(ReadRecord(document, shape).Text(), "Field not found in json");
    EXPECT_EQ(shape.corners.front().x, 5);
    EXPECT_EQ(shape.negated, -6);
    EXPECT_EQ(log.Texts(Platform::EngineLog),
              std::vector<std::string>{" Failed to find field \"X\" in json data"});
}

TEST(Serializer, WritesWhatItCanOfAnUnlistedEnumerator) {
    JsonDocument document;
    EXPECT_STREQ(JsonSerialization::WriteRecord(JsonColour::Unlisted, document).Text(),
                 "Unknown enum value found in type");
    EXPECT_STREQ(document.GetString(), "UNKNOWN_ENUM_VALUE");
}

TEST(Serializer, BuildsOnePlanForAllThreads) {
    JsonSerialization::PlanCache<Reflection::SerializeFunction> plans;
    std::vector<const JsonSerialization::WritePlan*> found(6);
    TestSupport::OnThreads(
        6, [&](int i) { found[static_cast<std::size_t>(i)] = &plans.Get(Reflection::TypeOf<JsonShape>()); });
    EXPECT_EQ(found, std::vector(6, found[0]));
}
