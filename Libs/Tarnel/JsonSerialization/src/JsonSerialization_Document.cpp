#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <exception>
#include <system_error>
#include <vector>

#include <rapidjson/error/en.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace JsonSerialization {

namespace {

using rapidjson::SizeType;

// Takes what the library's reader finds, and refuses what the reader lets through by mistake.
class StrictDocument : public JsonDocument {
public:
    rapidjson::ParseErrorCode Refusal() const { return m_refusal; }

    bool Key(const char* text, SizeType length, bool copy) { return String(text, length, copy); }

    // The reader has checked the text's own bytes, but decodes an escaped low surrogate without its high one
    // ("\udc00") to bytes that are not UTF-8: ED A0 to ED BF.
    bool String(const char* text, SizeType length, bool copy) {
        const auto isSurrogate = [](char first, char second) {
            return first == '\xED' && static_cast<unsigned char>(second) >= 0xA0;
        };
        const char* const end = text + length;
        if (std::adjacent_find(text, end, isSurrogate) != end) {
            return Refuse(rapidjson::kParseErrorStringUnicodeSurrogateInvalid);
        }
        return JsonDocument::String(text, length, copy);
    }

    // The reader has checked the form. Its own conversion adds an exponent and a count of decimals, and uses
    // the sum as a table index even if it overflowed.
    bool RawNumber(const char* text, SizeType length, bool) {
        uint64_t natural = 0;
        int64_t integer = 0;
        double real = 0;
        if (Convert(text, length, natural)) {
            return Uint64(natural);
        }
        if (Convert(text, length, integer)) {
            return Int64(integer);
        }
        return Convert(text, length, real) ? Double(real) : Refuse(rapidjson::kParseErrorNumberTooBig);
    }

private:
    template <class T>
    static bool Convert(const char* text, SizeType length, T& number) {
        const std::from_chars_result result = std::from_chars(text, text + length, number);
        return result.ec == std::errc() && result.ptr == text + length;
    }

    bool Refuse(rapidjson::ParseErrorCode reason) {
        m_refusal = reason;
        return false;
    }

    rapidjson::ParseErrorCode m_refusal = rapidjson::kParseErrorTermination;
};

// The reader looks for a zero byte at the text's end, but takes the three bytes after a lead byte unseen.
constexpr std::size_t ZeroBytes = 4;

rapidjson::ParseResult Parse(std::string_view text, StrictDocument& document) {
    constexpr unsigned Flags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag |
                               rapidjson::kParseValidateEncodingFlag | rapidjson::kParseNumbersAsStringsFlag;
    auto* const copy = static_cast<char*>(document.GetAllocator().Malloc(text.size() + ZeroBytes));
    std::fill_n(std::copy(text.begin(), text.end(), copy), ZeroBytes, '\0');
    rapidjson::InsituStringStream stream(copy);
    stream.src_ += text.starts_with(ByteOrderMark) ? ByteOrderMark.size() : 0;
    rapidjson::ParseResult result;
    const auto generate = [&](JsonDocument&) {
        rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator> reader;
        result = reader.Parse<Flags>(stream, document);
        if (result.Code() == rapidjson::kParseErrorTermination) {
            result.Set(document.Refusal(), result.Offset());
        }
        if (!result.IsError() && stream.Tell() != text.size()) { // stopped at a zero byte
            result.Set(rapidjson::kParseErrorDocumentRootNotSingular, stream.Tell());
        }
        return !result.IsError();
    };
    document.Populate(generate);
    return result;
}

using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, ThrowingAllocator>;
using Writer = rapidjson::Writer<Buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator>;

// Walks a document with its own stack: a parsed document may nest deeper than a thread's stack allows.
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

ParseResult ParseText(std::string_view text, JsonDocument& document) {
    document.SetNull();
    if (text.size() > MaxTextSize) {
        return {"The text is larger than 128 MiB.", MaxTextSize};
    }
    try {
        StrictDocument parsed;
        if (const rapidjson::ParseResult result = Parse(text, parsed); result.IsError()) {
            return {rapidjson::GetParseError_En(result.Code()), result.Offset()};
        }
        document.Swap(parsed);
        return {};
    } catch (const std::exception&) {
        return {"Out of memory", 0};
    }
}

ResultCode WriteText(const JsonDocument& document, std::string& text) {
    try {
        Buffer buffer;
        if (!DocumentWriter(buffer).Write(document)) {
            return "Failed to write json text"; // JSON has no form for infinity and NaN
        }
        text.assign(buffer.GetString(), buffer.GetSize());
        return Platform::Success;
    } catch (const std::exception&) {
        return "Out of memory";
    }
}

} // namespace JsonSerialization
