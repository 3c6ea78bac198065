#include "Tools/PackageTool/src/ConfigCheck.h"

#include <limits>
#include <new>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Tools/PackageTool/src/ConfigSections.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace {

using Reflection::TypeDescriptor;
using Reflection::TypeKind;

// Builds values of one document.
class SchemaBuilder {
public:
    explicit SchemaBuilder(JsonDocument& document) : m_allocator(document.GetAllocator()) {}

    JsonValue Text(std::string_view text) {
        return {text.data(), static_cast<rapidjson::SizeType>(text.size()), m_allocator};
    }
    void Add(JsonValue& object, std::string_view key, JsonValue value) {
        object.AddMember(Text(key), value, m_allocator);
    }
    void Append(JsonValue& array, JsonValue value) { array.PushBack(value, m_allocator); }

    JsonValue TypeNamed(const char* name) {
        JsonValue schema(rapidjson::kObjectType);
        Add(schema, "type", Text(name));
        return schema;
    }

    // defaults: the values of a record that nothing was read into, or null.
    JsonValue Record(const TypeDescriptor& type, const JsonValue* defaults) {
        JsonValue properties(rapidjson::kObjectType);
        JsonValue required(rapidjson::kArrayType);
        AddFields(type, defaults, properties, required);
        JsonValue schema = TypeNamed("object");
        Add(schema, "properties", std::move(properties));
        if (!required.Empty()) {
            Add(schema, "required", std::move(required));
        }
        Add(schema, "additionalProperties", JsonValue(false));
        return schema;
    }

    template <class Config>
    JsonValue RecordWithDefaults() {
        JsonDocument defaults;
        if (!JsonSerialization::WriteRecord(Config(), defaults)) {
            throw std::bad_alloc(); // the only way to fail
        }
        return Record(Reflection::TypeOf<Config>(), &defaults);
    }

private:
    // With those of its base.
    void AddFields(const TypeDescriptor& type, const JsonValue* defaults, JsonValue& properties,
                   JsonValue& required) {
        if (type.base) {
            AddFields(*type.base, defaults, properties, required);
        }
        for (const Reflection::FieldDescriptor& field : type.fields) {
            JsonValue schema = Of(*field.type);
            const char* const name = field.name.Text();
            if (!Reflection::FindAttribute(field.attributes,
                                           String::GlobalID(Reflection::AttributeName::Optional))) {
                Append(required, Text(name));
            } else if (const auto value =
                           defaults ? defaults->FindMember(name) : JsonValue::ConstMemberIterator();
                       defaults && value != defaults->MemberEnd()) {
                Add(schema, "default", JsonValue(value->value, m_allocator));
            }
            Add(properties, name, std::move(schema));
        }
    }

    JsonValue Of(const TypeDescriptor& type) {
        switch (type.kind) {
        case TypeKind::Record:
            return Record(type, nullptr);
        case TypeKind::Vector: {
            JsonValue schema = TypeNamed("array");
            Add(schema, "items", Of(*type.element));
            return schema;
        }
        case TypeKind::Map: {
            JsonValue schema = TypeNamed("object");
            Add(schema, "additionalProperties", Of(*type.element));
            return schema;
        }
        case TypeKind::Enumeration: {
            JsonValue names(rapidjson::kArrayType);
            for (const Reflection::EnumeratorDescriptor& enumerator : type.enumerators) {
                Append(names, Text(enumerator.name.View()));
            }
            JsonValue schema(rapidjson::kObjectType);
            Add(schema, "enum", std::move(names));
            return schema;
        }
        case TypeKind::NarrowString:
        case TypeKind::WideString:
            return TypeNamed("string");
        case TypeKind::Opaque:
            break;
        }
        return Scalar(type);
    }

    JsonValue Scalar(const TypeDescriptor& type) {
        if (&type == &Reflection::TypeOf<uint32_t>()) {
            return Integer<uint32_t>();
        }
        if (&type == &Reflection::TypeOf<int32_t>()) {
            return Integer<int32_t>();
        }
        if (&type == &Reflection::TypeOf<uint64_t>()) {
            return Integer<uint64_t>();
        }
        return TypeNamed("boolean");
    }

    template <class T>
    JsonValue Integer() {
        JsonValue schema = TypeNamed("integer");
        Add(schema, "minimum", JsonValue(std::numeric_limits<T>::min()));
        Add(schema, "maximum", JsonValue(std::numeric_limits<T>::max()));
        return schema;
    }

    JsonSerialization::DocumentAllocator& m_allocator;
};

// To the records a class is any text; naming the known ones lets editors complete them.
void NameClasses(SchemaBuilder& builder, JsonValue& application) {
    JsonValue& processes = application["properties"]["Processes"];
    JsonValue names(rapidjson::kObjectType);
    for (const ProcessClass& processClass : ProcessClasses()) {
        JsonValue instances = builder.TypeNamed("array");
        builder.Add(instances, "items", builder.TypeNamed("string"));
        builder.Add(names, processClass.name, std::move(instances));
    }
    builder.Add(processes, "properties", std::move(names));
    processes["additionalProperties"].SetBool(false);
    JsonValue components(rapidjson::kArrayType);
    for (const std::string_view component : ComponentClasses()) {
        builder.Append(components, builder.Text(component));
    }
    builder.Add(application["properties"]["Components"]["items"], "enum", std::move(components));
}

JsonValue Definitions(SchemaBuilder& builder) {
    JsonValue definitions(rapidjson::kObjectType);
#define ADD_DEFINITION(Class, Config) builder.Add(definitions, #Class, builder.RecordWithDefaults<Config>());
#define ADD_NOTHING(Class)
    MORVANE_PROCESS_CLASSES(ADD_DEFINITION, ADD_NOTHING)
#undef ADD_DEFINITION
#undef ADD_NOTHING
    return definitions;
}

// Any other key is a process's section. Its class depends on the application's section, which a schema can't
// follow.
JsonValue AnySection(SchemaBuilder& builder, const JsonValue& definitions) {
    JsonValue choices(rapidjson::kArrayType);
    for (const JsonValue::Member& definition : definitions.GetObject()) {
        JsonValue reference(rapidjson::kObjectType);
        builder.Add(reference, "$ref",
                    builder.Text(std::string("#/definitions/") + definition.name.GetString()));
        builder.Append(choices, std::move(reference));
    }
    JsonValue schema(rapidjson::kObjectType);
    builder.Add(schema, "anyOf", std::move(choices));
    return schema;
}

std::string ConfigSchemaText() {
    JsonDocument document(rapidjson::kObjectType);
    SchemaBuilder builder(document);
    JsonValue application = builder.Record(Reflection::TypeOf<ApplicationConfig>(), nullptr);
    NameClasses(builder, application);
    JsonValue definitions = Definitions(builder);
    JsonValue properties(rapidjson::kObjectType);
    builder.Add(properties, "$schema", builder.TypeNamed("string"));
    builder.Add(properties, "Application", std::move(application));
    JsonValue required(rapidjson::kArrayType);
    builder.Append(required, builder.Text("Application"));

    builder.Add(document, "$schema", builder.Text("http://json-schema.org/draft-07/schema#"));
    builder.Add(document, "title", builder.Text("Configuration of MorvaneCrashReporter"));
    builder.Add(document, "type", builder.Text("object"));
    builder.Add(document, "properties", std::move(properties));
    builder.Add(document, "required", std::move(required));
    builder.Add(document, "additionalProperties", AnySection(builder, definitions));
    builder.Add(document, "definitions", std::move(definitions));

    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 2);
    document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

} // namespace

ExitCode RunConfigSchema(const Arguments&) {
    Console::Print(ConfigSchemaText());
    return ExitCode::Good;
}
