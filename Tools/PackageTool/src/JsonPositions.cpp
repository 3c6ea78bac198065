#include "Tools/PackageTool/src/JsonPositions.h"

#include <algorithm>
#include <vector>

namespace {

// Finds the starts of names and values in a text that is known to be JSON.
class TokenScanner {
public:
    explicit TokenScanner(std::string_view text) : m_text(text) {
        m_next =
            text.starts_with(JsonSerialization::ByteOrderMark) ? JsonSerialization::ByteOrderMark.size() : 0;
    }

    // The end of the text when there is no more.
    std::size_t Next() {
        m_next = std::min(m_text.find_first_not_of(" \t\r\n,:]}", m_next), m_text.size());
        const std::size_t start = m_next;
        if (start == m_text.size()) {
            return start;
        }
        if (m_text[start] == '"') {
            SkipString();
        } else if (m_text[start] == '{' || m_text[start] == '[') {
            ++m_next;
        } else {
            m_next = std::min(m_text.find_first_of(" \t\r\n,]}", m_next), m_text.size());
        }
        return start;
    }

private:
    void SkipString() {
        do {
            const bool isEscape = m_text[m_next] == '\\';
            m_next = std::min(m_text.find_first_of("\"\\", m_next + (isEscape ? 2 : 1)), m_text.size());
        } while (m_next < m_text.size() && m_text[m_next] == '\\');
        m_next = std::min(m_next + 1, m_text.size());
    }

    std::string_view m_text;
    std::size_t m_next;
};

} // namespace

PositionCounter::PositionCounter(std::string_view text) : m_text(text) {
    if (text.starts_with(JsonSerialization::ByteOrderMark)) {
        m_offset = JsonSerialization::ByteOrderMark.size();
    }
}

TextPosition PositionCounter::At(std::size_t offset) {
    for (; m_offset < std::min(offset, m_text.size()); ++m_offset) {
        const char c = m_text[m_offset];
        if (c == '\n') {
            m_position = {m_position.line + 1, 1};
        } else if ((c & 0xC0) != 0x80) { // the first byte of a character
            ++m_position.column;
        }
    }
    return m_position;
}

JsonPositions::JsonPositions(std::string_view text, const JsonDocument& document) {
    TokenScanner tokens(text);
    std::vector<const JsonValue*> open = {&document}; // the next in the text is last
    while (!open.empty()) {
        const JsonValue* const value = open.back();
        open.pop_back();
        m_offsets[value] = tokens.Next();
        const std::size_t first = open.size();
        if (value->IsObject()) {
            for (const JsonValue::Member& member : value->GetObject()) {
                open.insert(open.end(), {&member.name, &member.value});
            }
        } else if (value->IsArray()) {
            for (const JsonValue& element : value->GetArray()) {
                open.push_back(&element);
            }
        }
        std::reverse(open.begin() + static_cast<std::ptrdiff_t>(first), open.end());
    }
}

std::size_t JsonPositions::Find(const JsonValue& value) const {
    const auto found = m_offsets.find(&value);
    return found == m_offsets.end() ? 0 : found->second;
}
