#include "Libs/Shared/src/JsonProblems.h"

#include <algorithm>
#include <utility>

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

// Finds positions while it walks through a text once.
class PositionCounter {
public:
    explicit PositionCounter(std::string_view text) : m_text(text) {
        if (text.starts_with(JsonSerialization::ByteOrderMark)) {
            m_offset = JsonSerialization::ByteOrderMark.size();
        }
    }

    // Of the byte at offset, which is not before the one of the last call.
    TextPosition At(std::size_t offset) {
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

private:
    std::string_view m_text;
    std::size_t m_offset = 0;
    TextPosition m_position;
};

// Visits every value and every member's name, in the order of the text.
template <class Visit> // void visit(const JsonValue& valueOrName)
void Walk(const JsonValue& root, Visit visit) {
    struct Level {
        const JsonValue* container;
        rapidjson::SizeType next;
    };
    std::vector<Level> open;
    const auto begin = [&](const JsonValue& value) {
        visit(value);
        if (value.IsObject() || value.IsArray()) {
            open.push_back({&value, 0});
        }
    };
    begin(root);
    while (!open.empty()) {
        const JsonValue& container = *open.back().container;
        const rapidjson::SizeType index = open.back().next++;
        if (container.IsArray() && index < container.Size()) {
            begin(container[index]);
        } else if (container.IsObject() && index / 2 < container.MemberCount()) {
            const auto member = container.MemberBegin() + static_cast<std::ptrdiff_t>(index / 2);
            begin(index % 2 == 0 ? member->name : member->value);
        } else {
            open.pop_back();
        }
    }
}

std::string Expected(const Reflection::TypeDescriptor& type) {
    switch (type.kind) {
    case Reflection::TypeKind::Record:
    case Reflection::TypeKind::Map:
        return "an object";
    case Reflection::TypeKind::Vector:
        return "an array";
    case Reflection::TypeKind::NarrowString:
    case Reflection::TypeKind::WideString:
        return "a string";
    case Reflection::TypeKind::Opaque:
        return type.name.Text();
    case Reflection::TypeKind::Enumeration:
        break;
    }
    std::string names = "one of";
    for (const Reflection::EnumeratorDescriptor& enumerator : type.enumerators) {
        names.append(" \"").append(enumerator.name.Text()).append("\"");
    }
    return names;
}

} // namespace

std::string JsonProblem::WithPlace() const {
    return "line " + std::to_string(position.line) + ", column " + std::to_string(position.column) + ": " +
           text;
}

void JsonProblems::Add(const JsonValue& where, std::string text, bool isWarning) {
    m_found.emplace(&where, Found{std::move(text), isWarning});
}

std::vector<JsonProblem> JsonProblems::InOrderOf(std::string_view text, const JsonDocument& document) const {
    TokenScanner tokens(text);
    PositionCounter counter(text);
    std::vector<JsonProblem> problems;
    Walk(document, [&](const JsonValue& value) {
        const std::size_t offset = tokens.Next();
        const auto [first, last] = m_found.equal_range(&value);
        for (auto found = first; found != last; ++found) {
            problems.push_back({counter.At(offset), found->second.text, found->second.isWarning});
        }
    });
    return problems;
}

JsonProblem ParseProblem(std::string_view text, const JsonSerialization::ParseResult& parsed) {
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
        return {{}, "The file is UTF-16; save it as UTF-8"};
    }
    return {PositionCounter(text).At(parsed.offset), parsed.error};
}

JsonProblem ReadProblem(std::string_view text, const JsonDocument& document,
                        const JsonSerialization::ReadFailure& failure) {
    std::string problem;
    if (!failure.key.empty()) {
        problem.append("\"").append(failure.key).append(failure.expected ? "\": " : "\" is missing");
    }
    if (failure.expected) {
        problem.append("expected ").append(Expected(*failure.expected));
    }
    JsonProblems problems;
    problems.Add(*failure.where, std::move(problem));
    return problems.InOrderOf(text, document).at(0);
}
