#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/String/src/String_Encoding.h"

extern "C" const void* EXP_GetEmptyBasicString(); // the characters of the empty value, aligned for any type

namespace String {

// Lies right in front of the characters.
struct BasicHeader {
    uint32_t capacity; // characters, the terminator included; 0 for the shared empty value
    uint32_t length;   // characters
};

// Takes blocks from the general heap. Null when there is no memory.
struct HeapAllocator {
    static void* Allocate(std::size_t bytes);
    static void Free(void* block);
};

// A text of its own on the heap, one pointer wide. Empty texts own nothing: they all point at one shared
// value. A failed allocation is asserted and leaves the text empty. One thread at a time.
template <Encoding TextEncoding, class Allocator = HeapAllocator>
class BasicT {
public:
    using Char = typename CharOf<TextEncoding>::Type;
    using View = std::basic_string_view<Char>;

    BasicT() = default;
    explicit BasicT(const Char* text) { Assign(text); }
    explicit BasicT(View text) { Assign(text); }
    BasicT(const BasicT& other) { Assign(other.AsView()); }
    BasicT(BasicT&& other) noexcept : m_sz(std::exchange(other.m_sz, GetEmptyString())) {}
    ~BasicT() { Release(); }

    BasicT& operator=(const BasicT& other) {
        if (this != &other) {
            Assign(other.AsView());
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
            std::memmove(m_sz, text.data(), text.size() * sizeof(Char));
            SetLength(text.size());
        }
    }

    // Cuts the text to at most that many characters. Not for the empty text.
    void Truncate(uint32_t length) {
        PLATFORM_ASSERT(this->m_sz != GetEmptyString());
        if (m_sz != GetEmptyString() && length < Length()) {
            SetLength(length);
        }
    }

    const Char* CStr() const { return m_sz; }
    uint32_t Length() const { return Header()->length; }
    uint32_t Capacity() const { return Header()->capacity; }
    bool IsEmpty() const { return Length() == 0; }
    View AsView() const { return {m_sz, Length()}; }

    friend bool operator==(const BasicT& left, const BasicT& right) {
        return left.AsView() == right.AsView();
    }

private:
    static Char* GetEmptyString() { return static_cast<Char*>(const_cast<void*>(EXP_GetEmptyBasicString())); }

    BasicHeader* Header() const { return reinterpret_cast<BasicHeader*>(m_sz) - 1; }

    void SetLength(std::size_t length) {
        m_sz[length] = 0;
        Header()->length = static_cast<uint32_t>(length);
    }

    void Release() {
        if (m_sz != GetEmptyString()) {
            Allocator::Free(Header());
            m_sz = GetEmptyString();
        }
    }

    // Room for that many characters and the terminator; the present text is lost when there was none.
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
