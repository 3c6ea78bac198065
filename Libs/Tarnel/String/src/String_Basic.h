#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

extern "C" const void* EXP_GetEmptyBasicString(); // the characters of the empty value, aligned for any type

namespace String {

// How the units of a text are read.
enum class Encoding : uint32_t { ASCII, UTF8, UTF16, UTF32, WIDE_CHAR };

// The character type that carries an encoding.
template <Encoding>
struct CharOf {
    using Type = char;
};
template <>
struct CharOf<Encoding::UTF16> {
    using Type = char16_t;
};
template <>
struct CharOf<Encoding::UTF32> {
    using Type = char32_t;
};
template <>
struct CharOf<Encoding::WIDE_CHAR> {
    using Type = wchar_t;
};

// Lies right in front of the characters.
struct BasicHeader {
    uint32_t capacity; // characters, the terminator included; 0 for the shared empty value
    uint32_t length;   // characters
};

// Takes blocks from the general heap. Null if there is no memory.
struct HeapAllocator {
    static void* Allocate(std::size_t bytes);
    static void Free(void* block);
};

// A heap text, one pointer wide, which modules loaded into the process share; the agent itself uses
// std::string. Empty texts own nothing: they all point at one shared value. A failed allocation is asserted
// and leaves the text empty. One thread at a time.
template <Encoding TextEncoding, class Allocator = HeapAllocator>
class BasicT {
public:
    using Char = typename CharOf<TextEncoding>::Type;
    using View = std::basic_string_view<Char>;

    BasicT() = default;
    explicit BasicT(const Char* text) { Assign(text); }
    explicit BasicT(View text) { Assign(text); }
    BasicT(const BasicT& other) { Assign(View(other)); }
    BasicT(BasicT&& other) noexcept : m_sz(std::exchange(other.m_sz, GetEmptyString())) {}
    ~BasicT() { Release(); }

    BasicT& operator=(const BasicT& other) {
        if (this != &other) {
            Assign(View(other));
        }
        return *this;
    }
    BasicT& operator=(BasicT&& other) noexcept {
        std::swap(m_sz, other.m_sz);
        return *this;
    }

    // Null gives the empty text.
    void Assign(const Char* text) { Assign(text ? View(text) : View()); }

    // The text may be a part of this one.
    void Assign(View text) {
        if (text.empty()) {
            Release();
        } else if (Reserve(text.size())) {
            PLATFORM_ASSERT(this->m_sz != GetEmptyString());
            std::memmove(m_sz, text.data(), text.size() * sizeof(Char));
            m_sz[text.size()] = 0;
            Header()->length = static_cast<uint32_t>(text.size());
        }
    }

    const Char* CStr() const { return m_sz; }
    uint32_t Length() const { return Header()->length; }
    uint32_t Capacity() const { return Header()->capacity; }
    bool IsEmpty() const { return Length() == 0; }
    operator View() const { return {m_sz, Length()}; } // as std::string

    friend bool operator==(const BasicT& left, const BasicT& right) { return View(left) == View(right); }

private:
    static Char* GetEmptyString() { return static_cast<Char*>(const_cast<void*>(EXP_GetEmptyBasicString())); }

    BasicHeader* Header() const { return reinterpret_cast<BasicHeader*>(m_sz) - 1; }

    void Release() {
        if (m_sz != GetEmptyString()) {
            Allocator::Free(Header());
            m_sz = GetEmptyString();
        }
    }

    // Makes room for that many characters and the terminator. Loses the present text if it must allocate.
    bool Reserve(std::size_t length) {
        if (length < Capacity()) {
            return true;
        }
        Release();
        void* szBuffer = nullptr;
        if (length < std::numeric_limits<uint32_t>::max()) {
            szBuffer = Allocator::Allocate(sizeof(BasicHeader) + (length + 1) * sizeof(Char));
        }
        PLATFORM_ASSERT_MESSAGE(szBuffer, "Allocation Failed");
        if (!szBuffer) {
            return false;
        }
        auto* const header = static_cast<BasicHeader*>(szBuffer);
        *header = {static_cast<uint32_t>(length + 1), 0};
        m_sz = reinterpret_cast<Char*>(header + 1);
        return true;
    }

    Char* m_sz = GetEmptyString();
};

} // namespace String
