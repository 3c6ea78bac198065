#include "Tools/SampleGame/src/HeaderText.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "Tools/SampleGame/src/Files.h"

namespace SampleGame {

namespace {

constexpr uint32_t HeaderVersion = 1;
constexpr uint32_t Changelist = 4711;

using JsonWriter = rapidjson::Writer<rapidjson::StringBuffer>;

// A header that is not UTF-8 is refused, and an exception's text or a path may be in any encoding.
void Text(JsonWriter& json, const char* key, const std::string& value) {
    const std::string text = Narrow(Wide(value));
    json.Key(key);
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void Number(JsonWriter& json, const char* key, uint64_t value) {
    json.Key(key);
    json.Uint64(value);
}

void File(JsonWriter& json, const std::string& name) {
    json.StartObject();
    Text(json, "File", name);
    Text(json, "MD5", "");
    json.EndObject();
}

void Catalog(JsonWriter& json, const HeaderFields& fields) {
    json.Key("Catalog");
    json.StartObject();
    json.Key("Dump");
    File(json, fields.dumpFile);
    json.Key("Log");
    File(json, fields.logFile);
    json.Key("Attachments");
    json.StartArray();
    for (const std::string& name : fields.attachments) {
        File(json, name);
    }
    json.EndArray();
    json.EndObject();
}

std::string StackTrace(const CrashContext& crash) {
    std::string text;
    for (const uint64_t address : crash.callstack) {
        text += DescribeAddress(address, crash.modules) + "\n";
    }
    return text;
}

void Exception(JsonWriter& json, const CrashContext& crash) {
    json.Key("Exception");
    json.StartObject();
    Text(json, "Message", crash.message);
    Text(json, "StackTrace", StackTrace(crash));
    json.EndObject();
    Number(json, "StackFrameStart", 0);
    Number(json, "StackFrameEnd", crash.callstack.empty() ? 0 : crash.callstack.size() - 1);
    json.Key("Callstack");
    json.StartArray();
    for (const uint64_t address : crash.callstack) {
        json.Uint64(address);
    }
    json.EndArray();
}

void WriteModule(JsonWriter& json, const Module& module) {
    json.StartObject();
    Text(json, "file", module.path);
    Number(json, "baseAddr", module.base);
    Number(json, "size", module.size);
    Number(json, "guid1", module.guid1);
    Number(json, "guid2", module.guid2);
    Number(json, "guid3", module.guid3);
    json.Key("guid4");
    json.StartArray();
    for (const uint8_t byte : module.guid4) {
        json.Uint(byte);
    }
    json.EndArray();
    Number(json, "age", module.age);
    Text(json, "pdbPath", module.pdbPath);
    json.EndObject();
}

void Build(JsonWriter& json) {
    json.Key("Version");
    json.StartObject();
    Number(json, "Major", 1);
    Number(json, "Minor", 0);
    Number(json, "Rev", 0);
    Number(json, "Build", 0);
    json.EndObject();
    Number(json, "Changelist", Changelist);
}

} // namespace

std::string HeaderText(const HeaderFields& fields, const CrashContext& crash) {
    rapidjson::StringBuffer buffer;
    JsonWriter json(buffer);
    json.StartObject();
    Number(json, "HeaderVersion", HeaderVersion);
    Text(json, "Host", fields.host);
    Text(json, "Time", fields.time);
    Text(json, "Application", "SampleGame");
    Text(json, "Source", "INTERNAL");
    Text(json, "Project", "Sample");
    Text(json, "SubmissionType", "Crash");
    Text(json, "Key", crash.callstack.empty() ? "" : DescribeAddress(crash.callstack.front(), crash.modules));
    Catalog(json, fields);
    Exception(json, crash);
    json.Key("Session");
    json.StartObject();
    Number(json, "Hash", fields.sessionHash);
    json.Key("Time");
    json.Int64(fields.sessionTime);
    json.EndObject();
    json.Key("ModuleInfo");
    json.StartArray();
    for (const Module& module : crash.modules) {
        WriteModule(json, module);
    }
    json.EndArray();
    Build(json);
    json.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

} // namespace SampleGame
