#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"

#include <mutex>

namespace Reflection {

namespace {

// Never destroyed: types may still be looked up while static objects are.
std::recursive_mutex& RegistrationLock() {
    static auto& s_lock = *new std::recursive_mutex;
    return s_lock;
}

} // namespace

// One registration under way, from the lock to the end of its build. A build that throws
// is tried again by the next call.
class TypeRegistration::Scope {
public:
    explicit Scope(TypeRegistration& registration) : m_registration(registration) { ++s_depth; }
    Scope(const Scope&) = delete; // counts one level
    Scope& operator=(const Scope&) = delete;

    ~Scope() {
        if (--s_depth == 0) {
            Publish();
        }
    }

    void Built() {
        m_registration.m_nextBuilt = s_built;
        s_built = &m_registration;
    }

private:
    static void Publish() {
        for (TypeRegistration* built = s_built; built; built = built->m_nextBuilt) {
            built->m_state.store(Done, std::memory_order_release);
        }
        s_built = nullptr;
    }

    TypeRegistration& m_registration;
    inline static int s_depth = 0; // guarded by the registration lock, as is the list
    inline static TypeRegistration* s_built = nullptr;
};

void TypeRegistration::Register(BuildFunction build) {
    const std::lock_guard lock(RegistrationLock());
    uint32_t expected = NotStarted;
    if (!m_state.compare_exchange_strong(expected, InProgress)) {
        return; // registered meanwhile, or this thread came back to a type it is building
    }
    Scope scope(*this);
    try {
        // Types built on the way may point at it: the address stays through every attempt.
        if (!m_isConstructed) {
            new (m_storage) TypeDescriptor;
            m_isConstructed = true;
        } else {
            Descriptor() = TypeDescriptor();
        }
        build(Descriptor());
        scope.Built();
    } catch (...) {
        m_state.store(NotStarted);
        throw;
    }
}

} // namespace Reflection
