#include <algorithm>
#include <cstring>
#include <string>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

#include <rapidjson/error/en.h>

namespace JsonSerialization {

namespace {

// The parser's view of a text, with its end at the text's end or at a zero byte, whichever comes first.
class TextStream {
public:
    using Ch = char;

    explicit TextStream(std::string_view text)
        : m_begin(text.data()), m_next(text.data()), m_end(text.data() + text.size()) {
        if (text.starts_with("\xEF\xBB\xBF")) { // the byte order mark that Windows editors write
            m_next += 3;
        }
    }

    Ch Peek() const { return m_next != m_end ? *m_next : '\0'; }
    Ch Take() { return m_next != m_end ? *m_next++ : '\0'; }
    std::size_t Tell() const { return static_cast<std::size_t>(m_next - m_begin); }

    // The output side, which the parser names but does not use.
    Ch* PutBegin() { return nullptr; }
    void Put(Ch) {}
    void Flush() {}
    std::size_t PutEnd(Ch*) { return 0; }

private:
    const Ch* m_begin;
    const Ch* m_next;
    const Ch* m_end;
};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The digits of a negative exponent whose sign stands at that place, without leading zeros; none when that is
// no exponent's place.
std::string_view NegativeExponent(std::string_view text, std::size_t minus) {
    if (minus == 0 || (text[minus - 1] | 0x20) != 'e') {
        return {};
    }
    const auto first = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(minus) + 1, text.end(),
                                    [](char c) { return c != '0'; });
    return {first, std::find_if_not(first, text.end(), IsDigit)};
}

// The parser adds up a number's exponent and its count of decimals in an int and follows the sum into a
// table, also when it overflowed. Exponents of fewer digits are safe: no text has that many decimals.
constexpr std::size_t UnsafeExponentDigits = 9;

bool HasUnsafeExponent(std::string_view text) {
    for (std::size_t at = text.find('-'); at != std::string_view::npos; at = text.find('-', at + 1)) {
        if (NegativeExponent(text, at).size() >= UnsafeExponentDigits) {
            return true;
        }
    }
    return false;
}

// Puts an exponent of the same length in place of each unsafe one; the number is zero with either. Strings
// stay as they are.
void TameExponents(std::string& text) {
    bool inString = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') {
            inString = !inString;
        } else if (inString) {
            at += text[at] == '\\' ? 1u : 0u;
        } else if (text[at] == '-') {
            const std::string_view exponent = NegativeExponent(text, at);
            if (exponent.size() >= UnsafeExponentDigits) {
                const auto first = static_cast<std::size_t>(exponent.data() - text.data());
                text.replace(first, exponent.size(), std::string(exponent.size() - 4, '0') + "9999");
            }
        }
    }
}

constexpr unsigned ParseFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;

} // namespace

} // namespace JsonSerialization

// Lets the parser keep the stream in registers.
template <>
struct rapidjson::StreamTraits<JsonSerialization::TextStream> {
    enum { copyOptimization = 1 };
};

namespace JsonSerialization {

bool ParseText(std::string_view text, JsonDocument& document) {
    try {
        std::string tamed;
        if (HasUnsafeExponent(text)) {
            tamed = text;
            TameExponents(tamed);
            text = tamed;
        }
        TextStream stream(text);
        return !document.ParseStream<ParseFlags>(stream).HasParseError();
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
