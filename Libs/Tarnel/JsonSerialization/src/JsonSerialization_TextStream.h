#pragma once

#include <cstddef>
#include <string_view>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

namespace JsonSerialization {

inline constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF"; // as Windows editors write it

// The parser's view of a text, with its end at the text's end or at a zero byte, whichever comes first.
class TextStream {
public:
    using Ch = char;

    explicit TextStream(std::string_view text)
        : m_begin(text.data()), m_next(text.data()), m_end(text.data() + text.size()) {
        if (text.starts_with(ByteOrderMark)) {
            m_next += ByteOrderMark.size();
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

// The parser's view of a text that it decodes in its place; a zero byte ends it.
class InPlaceStream {
public:
    using Ch = char;

    explicit InPlaceStream(Ch* text) : m_begin(text), m_next(text) {}

    Ch Peek() const { return *m_next; }
    Ch Take() { return *m_next++; }
    std::size_t Tell() const { return static_cast<std::size_t>(m_next - m_begin); }

    Ch* PutBegin() { return m_output = m_next; }
    void Put(Ch c) { *m_output++ = c; }
    std::size_t PutEnd(const Ch* begin) { return static_cast<std::size_t>(m_output - begin); }
    void Flush() {}

private:
    Ch* m_begin;
    Ch* m_next;
    Ch* m_output = nullptr;
};

} // namespace JsonSerialization

// Lets the parser keep the streams in registers.
template <>
struct rapidjson::StreamTraits<JsonSerialization::TextStream> {
    enum { copyOptimization = 1 };
};
template <>
struct rapidjson::StreamTraits<JsonSerialization::InPlaceStream> {
    enum { copyOptimization = 1 };
};
