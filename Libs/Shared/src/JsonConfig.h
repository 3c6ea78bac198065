#pragma once

#include <string>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The configuration file: one JSON object with a section for each user.

// Reads and parses the file. A parse error is logged with its place in the file.
ResultCode LoadJsonConfig(const std::string& path, JsonDocument& document);

// The section of that name, an object.
ResultCode FindConfigSection(const JsonDocument& config, const char* name, const JsonValue*& section);

// Sets the record back to its defaults and fills it from the section of that name; "configuration section not
// found" leaves it as it was.
template <class T>
ResultCode ReadConfigSection(const JsonDocument& config, const char* name, T& record) {
    const JsonValue* section = nullptr;
    if (const ResultCode result = FindConfigSection(config, name, section); !result) {
        return result;
    }
    record = T();
    return JsonSerialization::ReadRecord(*section, record);
}
