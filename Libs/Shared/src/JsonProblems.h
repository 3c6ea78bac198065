#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

// A place in a text as editors show it: both count from 1, the column in characters. A byte order mark takes
// no column.
struct TextPosition {
    std::size_t line = 1;
    std::size_t column = 1;
};

struct JsonProblem {
    TextPosition position;
    std::string text;
    bool isWarning = false;

    // line 3, column 15: text
    std::string WithPlace() const;
};

// What is wrong with a parsed document, by the value or name that is wrong. Walks the text once, however many
// problems there are, and needs no more memory than they do; deep nesting needs no stack. All may throw
// std::bad_alloc.
class JsonProblems {
public:
    void Add(const JsonValue& where, std::string text, bool isWarning = false);

    // In the order of the text, which document was parsed from without error.
    std::vector<JsonProblem> InOrderOf(std::string_view text, const JsonDocument& document) const;

private:
    struct Found {
        std::string text;
        bool isWarning;
    };
    std::multimap<const JsonValue*, Found> m_found;
};

// Why a text could not be parsed.
JsonProblem ParseProblem(std::string_view text, const JsonSerialization::ParseResult& parsed);

// Why a record could not be read from the document that was parsed from text.
JsonProblem ReadProblem(std::string_view text, const JsonDocument& document,
                        const JsonSerialization::ReadFailure& failure);
