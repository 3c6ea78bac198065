#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// The one place where the JSON library is configured; no other header includes it. Misuse of a value is a
// failed assertion, after which the program continues.
#define RAPIDJSON_ASSERT(condition) PLATFORM_ASSERT(condition)

#if defined(__GNUC__)
#pragma GCC diagnostic push
#if !defined(__clang__) // does not know this warning
#pragma GCC diagnostic ignored "-Wclass-memaccess"
#endif
#pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
#endif
#include <rapidjson/document.h>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

namespace JsonSerialization {

// The JSON library does not check what its allocator returns, so this one throws std::bad_alloc. The
// functions below and the serializer turn the exception into a failure.
class ThrowingAllocator {
public:
    static constexpr bool kNeedFree = true;

    void* Malloc(std::size_t size) { return size == 0 ? nullptr : Checked(std::malloc(size)); }
    void* Realloc(void* block, std::size_t, std::size_t size) {
        if (size == 0) {
            std::free(block);
            return nullptr;
        }
        return Checked(std::realloc(block, size));
    }
    static void Free(void* block) { std::free(block); }

private:
    static void* Checked(void* block) {
        if (!block) {
            throw std::bad_alloc();
        }
        return block;
    }
};

using DocumentAllocator = rapidjson::MemoryPoolAllocator<ThrowingAllocator>;

} // namespace JsonSerialization

using JsonDocument = rapidjson::GenericDocument<rapidjson::UTF8<>, JsonSerialization::DocumentAllocator,
                                                JsonSerialization::ThrowingAllocator>;
using JsonValue = JsonDocument::ValueType;

namespace JsonSerialization {

inline constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF"; // as Windows editors write it

struct [[nodiscard]] ParseResult {
    const char* error = nullptr; // an English sentence; null if the text was parsed
    std::size_t offset = 0;      // of the error, in bytes

    explicit operator bool() const { return !error; }
};

// Of the longest text that is parsed, in bytes.
inline constexpr std::size_t MaxTextSize = 128u << 20;

// Parses one JSON text in UTF-8 of at most 128 MiB, with or without a byte order mark. Any bytes are safe to
// parse, however deep they nest. Numbers that a double can't hold and escaped halves of surrogate pairs are
// refused. The document owns a copy of the text, which its strings point into; after an error it is null.
ParseResult ParseText(std::string_view text, JsonDocument& document);

// Replaces text by the compact form: no blanks or line breaks, members in the document's order.
ResultCode WriteText(const JsonDocument& document, std::string& text);

} // namespace JsonSerialization
