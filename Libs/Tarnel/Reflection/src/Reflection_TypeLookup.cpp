#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"

#include <mutex>

namespace Reflection {

void TypeRegistration::Register(DescribeFunction describe) {
    static auto& s_lock = *new std::recursive_mutex; // types are looked up until the process ends
    static int s_depth = 0;                          // guarded by the lock

    const std::lock_guard lock(s_lock);
    if (uint32_t expected = NotStarted; m_state.compare_exchange_strong(expected, InProgress)) {
        ++s_depth;
        try {
            // Types described on the way may point at the descriptor, so a second attempt puts a new one in
            // the same place.
            describe(*new (m_storage) TypeDescriptor);
        } catch (...) {
            --s_depth;
            m_state.store(NotStarted);
            throw;
        }
        --s_depth;
    }
    if (s_depth == 0) {
        m_state.store(Done, std::memory_order_release);
    }
}

} // namespace Reflection
