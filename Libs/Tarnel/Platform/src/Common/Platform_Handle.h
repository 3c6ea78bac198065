#pragma once

#include <cstdint>
#include <utility>

namespace Platform {

#if defined(_WIN32)
using NativeHandle = void*; // the system's HANDLE
inline constexpr NativeHandle NoHandle = nullptr;
#else
using NativeHandle = int; // a descriptor
inline constexpr NativeHandle NoHandle = -1;
#endif

// Whether there is something to close. The system says "none" by null and by -1.
inline bool IsOpenHandle(NativeHandle handle) {
#if defined(_WIN32)
    return reinterpret_cast<std::intptr_t>(handle) > 0;
#else
    return handle >= 0;
#endif
}

// Owns one handle of the system and closes it with CloseCall, which returns false for a late error. One
// thread at a time.
template <bool (*CloseCall)(NativeHandle)>
class Handle {
public:
    constexpr Handle() = default;
    explicit Handle(NativeHandle native) : m_native(native) {}
    Handle(Handle&& other) noexcept : m_native(other.Release()) {}
    Handle& operator=(Handle&& other) noexcept {
        static_cast<void>(Close());
        m_native = other.Release();
        return *this;
    }
    ~Handle() { static_cast<void>(Close()); }

    explicit operator bool() const { return IsOpenHandle(m_native); }
    NativeHandle Get() const { return m_native; }
    NativeHandle Release() { return std::exchange(m_native, NoHandle); }

    // True if there was nothing to close.
    bool Close() {
        const NativeHandle native = Release();
        return !IsOpenHandle(native) || CloseCall(native);
    }

private:
    NativeHandle m_native = NoHandle;
};

bool CloseKernelHandle(NativeHandle handle);
bool CloseSearchHandle(NativeHandle handle); // this and the next: Windows only
bool CloseChangeHandle(NativeHandle handle);

using KernelHandle = Handle<CloseKernelHandle>; // a file, a process, an event...
using SearchHandle = Handle<CloseSearchHandle>;
using ChangeHandle = Handle<CloseChangeHandle>;

} // namespace Platform
