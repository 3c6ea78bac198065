#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <limits>
#include <string>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Exponents.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Surrogates.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_TextStream.h"

#include <rapidjson/error/en.h>

namespace JsonSerialization {

namespace {

using rapidjson::SizeType;

bool IsAscii(std::string_view text) {
    uint64_t bits = 0;
    while (text.size() >= sizeof(bits)) {
        uint64_t eight = 0;
        std::memcpy(&eight, text.data(), sizeof(eight));
        bits |= eight;
        text.remove_prefix(sizeof(eight));
    }
    for (const char c : text) {
        bits |= static_cast<unsigned char>(c);
    }
    return (bits & 0x8080808080808080) == 0;
}

// Passes a document's parts on to it as long as they don't nest deeply.
class ShallowHandler {
public:
    static constexpr int MaxDepth = 32; // a bug header has 4

    explicit ShallowHandler(JsonDocument& document) : m_document(document) {}

    bool Null() { return m_document.Null(); }
    bool Bool(bool value) { return m_document.Bool(value); }
    bool Int(int value) { return m_document.Int(value); }
    bool Uint(unsigned value) { return m_document.Uint(value); }
    bool Int64(int64_t value) { return m_document.Int64(value); }
    bool Uint64(uint64_t value) { return m_document.Uint64(value); }
    bool Double(double value) { return m_document.Double(value); }
    bool RawNumber(const char* text, SizeType length, bool copy) {
        return m_document.RawNumber(text, length, copy);
    }
    bool String(const char* text, SizeType length, bool copy) {
        return m_document.String(text, length, copy);
    }
    bool Key(const char* text, SizeType length, bool copy) { return m_document.Key(text, length, copy); }
    bool StartObject() { return ++m_depth <= MaxDepth && m_document.StartObject(); }
    bool EndObject(SizeType count) {
        --m_depth;
        return m_document.EndObject(count);
    }
    bool StartArray() { return ++m_depth <= MaxDepth && m_document.StartArray(); }
    bool EndArray(SizeType count) {
        --m_depth;
        return m_document.EndArray(count);
    }

private:
    JsonDocument& m_document;
    int m_depth = 0;
};

template <unsigned Flags>
bool ParseInPlace(char* text, JsonDocument& document) {
    const auto generate = [text](JsonDocument& target) {
        InPlaceStream stream(text);
        rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator> reader;
        ShallowHandler handler(target);
        return !reader.Parse<Flags | rapidjson::kParseInsituFlag>(stream, handler).IsError();
    };
    bool parsed = false;
    const auto generator = [&](JsonDocument& target) { return parsed = generate(target); };
    document.Populate(generator);
    return parsed;
}

// The fast way for the documents that are expected: the parser calls itself for each level of nesting, and
// strings stay in a copy of the text that the document owns. Refuses without a reason.
bool ParseShallow(std::string_view text, JsonDocument& document) {
    if (document.HasParseError()) {
        document.Parse("null"); // nothing else clears what an earlier parse left
    }
    text.remove_prefix(text.starts_with(ByteOrderMark) ? ByteOrderMark.size() : 0);
    auto* const copy = static_cast<char*>(document.GetAllocator().Malloc(text.size() + 1));
    std::copy(text.begin(), text.end(), copy);
    copy[text.size()] = '\0';
    return IsAscii(text) ? ParseInPlace<rapidjson::kParseNoFlags>(copy, document)
                         : ParseInPlace<rapidjson::kParseValidateEncodingFlag>(copy, document);
}

} // namespace

bool ParseText(std::string_view text, JsonDocument& document) {
    constexpr unsigned Flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    if (text.size() >= std::numeric_limits<SizeType>::max()) { // more than the document's lengths can count
        document.SetNull();
        return false;
    }
    try {
        std::string tamed;
        if (HasUnsafeExponent(text) || HasLoneLowSurrogate(text)) {
            tamed = text;
            TameExponents(tamed);
            BreakLoneLowSurrogates(tamed);
            text = tamed;
        }
        if (ParseShallow(text, document)) {
            return true;
        }
        TextStream stream(text);
        return !document.ParseStream<Flags>(stream).HasParseError();
    } catch (const std::exception&) {
        document.SetNull();
        return false;
    }
}

const char* ParseErrorText(const JsonDocument& document) {
    const rapidjson::ParseErrorCode error = document.GetParseError();
    return error == rapidjson::kParseErrorNone ? "Out of memory" : rapidjson::GetParseError_En(error);
}

} // namespace JsonSerialization
