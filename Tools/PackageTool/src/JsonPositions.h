#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

// A place in a text as editors show it: both count from 1, the column in characters.
struct TextPosition {
    std::size_t line = 1;
    std::size_t column = 1;
};

// Finds positions while it walks through a text once. A byte order mark takes no column. The text must
// outlive it.
class PositionCounter {
public:
    explicit PositionCounter(std::string_view text);

    // Of the byte at offset, which is not before the one of the last call.
    TextPosition At(std::size_t offset);

private:
    std::string_view m_text;
    std::size_t m_offset = 0;
    TextPosition m_position;
};

// Where the values and names of a parsed document are in its text. Both must outlive it. Deep nesting needs
// no stack.
class JsonPositions {
public:
    // text is what document was parsed from, without error.
    JsonPositions(std::string_view text, const JsonDocument& document);

    // The offset of a value or a member's name of the document; 0 for any other.
    std::size_t Find(const JsonValue& value) const;

private:
    std::unordered_map<const JsonValue*, std::size_t> m_offsets;
};
