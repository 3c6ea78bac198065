#pragma once

#include <functional>
#include <string>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// Called with the value or name that something is wrong with, and what it is.
using RecordReport = std::function<void(const JsonValue& where, std::string text)>;

// Reads as JsonSerialization::ReadRecord does, by the same plans and with its texts, but goes on behind a
// failure; a field that failed keeps its value. Reports names that no field has and names that stand twice
// too, which the reader passes over. May throw std::bad_alloc.
void ReadAndReport(const Reflection::TypeDescriptor& type, void* object, const JsonValue& value,
                   const RecordReport& report);

template <class T>
void ReadAndReport(T& record, const JsonValue& value, const RecordReport& report) {
    ReadAndReport(Reflection::TypeOf<T>(), &record, value, report);
}

std::string Quoted(std::string_view text);
std::string TextOf(const JsonValue& string);
