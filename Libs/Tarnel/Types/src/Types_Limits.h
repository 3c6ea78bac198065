#pragma once

#include <limits>

namespace Types {

// The smallest and largest value of an arithmetic type, as constants of that type. Min of a
// floating-point type is its most negative value.
template <class T>
struct Limits {
    static_assert(std::numeric_limits<T>::is_specialized, "Limits is for arithmetic types");

    static constexpr T Min = std::numeric_limits<T>::lowest();
    static constexpr T Max = (std::numeric_limits<T>::max)();
};

} // namespace Types
