#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>

#include "Libs/Tarnel/Reflection/src/Reflection_TypeDescriptor.h"

namespace Reflection {

// How TypeOf finds a type; the declaration forms and the generic types specialise it.
template <class T>
struct TypeAccessor;

// The descriptor of T, registered on first use. Any thread.
template <class T>
const TypeDescriptor& TypeOf() {
    return TypeAccessor<T>::Get();
}

// The once-only registration of one type: a static object per type, without a destructor, so that descriptors
// outlive every other static object.
//
// A type's fields register their types in turn, and a type may lead back to itself. All registration
// therefore runs under one lock, and what the outermost registration pulled in is published together with it:
// other threads see finished descriptors only.
class TypeRegistration {
public:
    using BuildFunction = void (*)(TypeDescriptor& descriptor);

    constexpr TypeRegistration() = default;
    TypeRegistration(const TypeRegistration&) = delete; // the descriptor's address stands for the type
    TypeRegistration& operator=(const TypeRegistration&) = delete;

    // Waits for a registration that another thread has under way. Throws std::bad_alloc when there is no
    // memory; the next call then tries again.
    const TypeDescriptor& Get(BuildFunction build) {
        if (m_state.load(std::memory_order_acquire) != Done) [[unlikely]] {
            Register(build);
        }
        return Descriptor();
    }

private:
    enum State : uint32_t { NotStarted = 0, InProgress = 1, Done = 3 };
    class Scope;

    void Register(BuildFunction build);
    TypeDescriptor& Descriptor() { return *std::launder(reinterpret_cast<TypeDescriptor*>(m_storage)); }

    std::atomic<uint32_t> m_state = NotStarted;
    bool m_isConstructed = false; // guarded by the registration lock
    alignas(TypeDescriptor) std::byte m_storage[sizeof(TypeDescriptor)] = {};
    TypeRegistration* m_nextBuilt = nullptr; // built, waiting to be published
};

} // namespace Reflection
