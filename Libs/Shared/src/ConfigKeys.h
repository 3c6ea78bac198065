#pragma once

#include <string_view>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"

// Which keys a section of the configuration may have. All may throw std::bad_alloc.
namespace ConfigKeys {

// Keys that begin with "$" or "//" are for people and editors.
bool IsForPeople(std::string_view key);

// The keys of a section that is read into this record, in the order of its declaration.
std::vector<std::string_view> Of(const Reflection::TypeDescriptor& record);

// The known key that was most likely meant: the one that the fewest letters have to be changed, added or left
// out for, whatever their case. "askpermission" gives "AskPermission". Empty if no key is known.
std::string_view Nearest(std::string_view key, const std::vector<std::string_view>& known);

} // namespace ConfigKeys
