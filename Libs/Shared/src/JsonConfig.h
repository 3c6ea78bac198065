#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The configuration file: one JSON object with a section for each user.

// The "Application" section of the configuration file.
struct ApplicationConfig {
    std::map<std::string, std::vector<std::string>> processes; // maker name to the instance names to make
    std::vector<std::string> components; // maker names, each the component's own name too
    std::string applicationFolder;       // name under the user's Documents folder
    std::string logFile;                 // name in the log folder; empty for none
};
Reflection_DeclareType(ApplicationConfig);

// For a class that the section names and the program does not have.
inline constexpr char NoProcessMaker[] = "Failed to find maker for process";
inline constexpr char NoComponentMaker[] = "Failed to find maker for component";

// Reads and parses the file. A parse error is logged with its place in the file.
ResultCode LoadJsonConfig(const std::string& path, JsonDocument& document);

// The section of that name, an object.
ResultCode FindConfigSection(const JsonDocument& config, const char* name, const JsonValue*& section);

// Which keys a section of the configuration may have. All may throw std::bad_alloc.
namespace ConfigKeys {

// Keys that begin with "$" or "//" are for people and editors.
bool IsForPeople(std::string_view key);

// The keys of a section that is read into this record, in the order of its declaration.
std::vector<std::string_view> Of(const Reflection::TypeDescriptor& record);

// The known key that was most likely meant: the one that the fewest letters have to be changed, added or left
// out for, whatever their case. "askpermission" gives "AskPermission". Empty if no key is known.
std::string_view Nearest(std::string_view key, const std::vector<std::string_view>& known);

} // namespace ConfigKeys

// Logs each key of the section that the record does not have, with the nearest one that it has, and each that
// appears again, which is not read. False if there is any.
bool HasOnlyKnownKeys(const JsonValue& section, const char* name, const Reflection::TypeDescriptor& record);

enum class UnknownKeys { Reported, Refused };

// Sets the record back to its defaults and fills it from the section of that name; "configuration section not
// found" leaves it as it was. Unknown and repeated keys are logged, and fail the call if they are refused.
template <class T>
ResultCode ReadConfigSection(const JsonDocument& config, const char* name, T& record,
                             UnknownKeys unknown = UnknownKeys::Reported) {
    const JsonValue* section = nullptr;
    RETURN_IF_FAILED(FindConfigSection(config, name, section));
    record = T();
    const bool isKnown = HasOnlyKnownKeys(*section, name, Reflection::TypeOf<T>());
    RETURN_IF_FAILED(JsonSerialization::ReadRecord(*section, record));
    return isKnown || unknown == UnknownKeys::Reported
               ? Platform::Success
               : ResultCode("configuration section has an unknown or repeated key");
}
