#pragma once

#include <span>
#include <string_view>

#include "Libs/Tarnel/Reflection/src/Reflection_TypeDescriptor.h"

// A class that a configuration can name under Processes.
struct ProcessClass {
    std::string_view name;
    const Reflection::TypeDescriptor& (*section)(); // of its section's record; null when it reads none
};

std::span<const ProcessClass> ProcessClasses();
const ProcessClass* FindProcessClass(std::string_view name); // null when there is none

// The classes that a configuration can name under Components.
std::span<const std::string_view> ComponentClasses();
