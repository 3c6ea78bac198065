#pragma once

#include <optional>
#include <string>
#include <string_view>

struct Catalog;

// The text before the last "_Minidump.dmp" or, without one, before the last ".dmp". None for a name that has
// neither.
std::optional<std::string_view> InstanceKeyOfFile(std::string_view file);

// From the dump's name alone when there is a dump, else from the first attachment that gives a key. Empty
// when there is none.
std::string DeriveInstanceKey(const Catalog& catalog);
