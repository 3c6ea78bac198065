#include <exception>
#include <vector>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace JsonSerialization {

namespace {

using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, ThrowingAllocator>;
using Writer = rapidjson::Writer<Buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator>;
using rapidjson::SizeType;

// Walks a document with a stack of its own: one that was parsed may nest deeper than a thread's stack is.
class DocumentWriter {
public:
    explicit DocumentWriter(Buffer& buffer) : m_writer(buffer) {}

    bool Write(const JsonValue& root) {
        if (!Begin(root)) {
            return false;
        }
        while (!m_open.empty()) {
            if (!Step()) {
                return false;
            }
        }
        return true;
    }

private:
    struct Level {
        const JsonValue* container;
        SizeType next;
    };

    // The whole value, or the opening of a container.
    bool Begin(const JsonValue& value) {
        if (!value.IsObject() && !value.IsArray()) {
            return value.Accept(m_writer);
        }
        m_open.push_back({&value, 0});
        return value.IsObject() ? m_writer.StartObject() : m_writer.StartArray();
    }

    // The next part of the innermost open container, or its closing.
    bool Step() {
        Level& level = m_open.back();
        const JsonValue& container = *level.container;
        const SizeType index = level.next++;
        if (container.IsArray()) {
            return index < container.Size() ? Begin(container[index]) : Close(m_writer.EndArray());
        }
        if (index == container.MemberCount()) {
            return Close(m_writer.EndObject());
        }
        const JsonValue::Member& member = *(container.MemberBegin() + static_cast<std::ptrdiff_t>(index));
        return m_writer.Key(member.name.GetString(), member.name.GetStringLength()) && Begin(member.value);
    }

    bool Close(bool written) {
        m_open.pop_back();
        return written;
    }

    Writer m_writer;
    std::vector<Level> m_open;
};

} // namespace

ResultCode WriteText(const JsonDocument& document, std::string& text) {
    try {
        Buffer buffer;
        if (!DocumentWriter(buffer).Write(document)) {
            return "Failed to write json text"; // a number that is none or infinite has no JSON form
        }
        text.assign(buffer.GetString(), buffer.GetSize());
        return Platform::Success;
    } catch (const std::exception&) {
        return "Out of memory";
    }
}

} // namespace JsonSerialization
