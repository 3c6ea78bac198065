#include "Libs/Shared/src/JsonConfig.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Plan.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

Reflection_DefineType(ApplicationConfig,
                      Reflection_Field(processes, "Processes", Reflection::OptionalAttribute()),
                      Reflection_Field(components, "Components", Reflection::OptionalAttribute()),
                      Reflection_Field(applicationFolder, "ApplicationFolder",
                                       Reflection::OptionalAttribute()),
                      Reflection_Field(logFile, "LogFile", Reflection::OptionalAttribute()));

namespace {

ResultCode ReadConfigBytes(const std::string& path, std::vector<uint8_t>& bytes) {
    switch (Platform::ReadWholeFile(path, bytes)) {
    case Platform::ReadOutcome::Done:
        return Platform::Success;
    case Platform::ReadOutcome::OpenFailed:
        return "Failed to open json config file";
    case Platform::ReadOutcome::Empty:
        return "Failed to read zero length json config file";
    case Platform::ReadOutcome::ReadFailed:
        break;
    }
    return "Failed to read json config file!";
}

// The edit distance, row by row: costs[i] is that of the letters seen so far to the first i of known.
std::size_t Distance(std::string_view key, std::string_view known) {
    std::vector<std::size_t> costs(known.size() + 1);
    std::iota(costs.begin(), costs.end(), std::size_t{0});
    for (const char letter : key) {
        std::size_t diagonal = costs[0]++;
        for (std::size_t i = 0; i < known.size(); ++i) {
            const bool isSame = String::LowerAscii(letter) == String::LowerAscii(known[i]);
            const std::size_t replaced = diagonal + (isSame ? 0 : 1);
            diagonal = costs[i + 1];
            costs[i + 1] = std::min({replaced, diagonal + 1, costs[i] + 1});
        }
    }
    return costs.back();
}

} // namespace

ResultCode LoadJsonConfig(const std::string& path, JsonDocument& document) {
    std::vector<uint8_t> bytes;
    RETURN_IF_FAILED(ReadConfigBytes(path, bytes));
    if (const auto parsed = JsonSerialization::ParseText(Platform::TextOf(bytes), document); !parsed) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to parse file \"%s\" at position %u. %s", path.c_str(),
                     static_cast<unsigned>(parsed.offset), parsed.error);
        return "Failed to decode json header data!";
    }
    return Platform::Success;
}

ResultCode FindConfigSection(const JsonDocument& config, const char* name, const JsonValue*& section) {
    section = nullptr;
    if (!config.IsObject()) {
        return "configuration section not found";
    }
    const auto found = config.FindMember(name);
    if (found == config.MemberEnd()) {
        return "configuration section not found";
    }
    if (!found->value.IsObject()) {
        return "configuration section found is not an object";
    }
    section = &found->value;
    return Platform::Success;
}

bool ConfigKeys::IsForPeople(std::string_view key) {
    return key.starts_with('$') || key.starts_with("//");
}

std::vector<std::string_view> ConfigKeys::Of(const Reflection::TypeDescriptor& record) {
    JsonSerialization::PlanCache<Reflection::DeserializeFunction> plans;
    std::vector<std::string_view> keys;
    for (const auto& field : plans.Get(record).fields) {
        keys.push_back(field.key);
    }
    return keys;
}

std::string_view ConfigKeys::Nearest(std::string_view key, const std::vector<std::string_view>& known) {
    const auto nearest = std::ranges::min_element(
        known, {}, [key](std::string_view candidate) { return Distance(key, candidate); });
    return nearest == known.end() ? std::string_view() : *nearest;
}

bool HasOnlyKnownKeys(const JsonValue& section, const char* name, const Reflection::TypeDescriptor& record) {
    const std::vector<std::string_view> known = ConfigKeys::Of(record);
    bool isKnown = true;
    for (const JsonValue::Member& member : section.GetObject()) {
        const std::string_view key(member.name.GetString(), member.name.GetStringLength());
        const bool isFirst = &section.FindMember(member.name)->value == &member.value;
        if (ConfigKeys::IsForPeople(key) || (isFirst && std::ranges::find(known, key) != known.end())) {
            continue;
        }
        isKnown = false;
        if (!isFirst) {
            PLATFORM_LOG(Platform::ErrorLog, " Key \"%s\" appears twice in section \"%s\", the first counts",
                         member.name.GetString(), name);
            continue;
        }
        PLATFORM_LOG(Platform::ErrorLog, " Unknown key \"%s\" in section \"%s\", did you mean \"%s\"?",
                     member.name.GetString(), name, std::string(ConfigKeys::Nearest(key, known)).c_str());
    }
    return isKnown;
}
