#pragma once

#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

namespace JsonSerialization {

// A check of the JSON library failed: someone misused a value. Reports it as a library assertion and goes on.
void ReportMisuse(const char* expression, const char* file, int line, bool* ignoreAlways);

} // namespace JsonSerialization

// The one place where the JSON library is configured; no other header includes it. The checks stand in its
// innermost loops, so what they do on failure is kept out of line.
#define RAPIDJSON_ASSERT(condition)                                                             \
    do {                                                                                        \
        if (!(condition)) [[unlikely]] {                                                        \
            static bool s_ignoreAlways = false;                                                 \
            ::JsonSerialization::ReportMisuse(#condition, __FILE__, __LINE__, &s_ignoreAlways); \
        }                                                                                       \
    } while (false)

#if defined(__GNUC__)
#pragma GCC diagnostic push
#if !defined(__clang__) // which does not know it
#pragma GCC diagnostic ignored "-Wclass-memaccess"
#endif
#pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
#endif
#include <rapidjson/document.h>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

namespace JsonSerialization {

// The JSON library writes through a null block; a throwing heap keeps it from that. Every function below and
// every reader and writer turns the exception into a failure.
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

// Any bytes are safe to parse, however deep they nest. False when they are not one JSON text in UTF-8; then
// ParseErrorText and document.GetErrorOffset() (in bytes) say why. A leading byte order mark is skipped.
[[nodiscard]] bool ParseText(std::string_view text, JsonDocument& document);

// English. Of a document that ParseText refused.
const char* ParseErrorText(const JsonDocument& document);

// The compact form: no blanks, no line breaks, members in their order. Replaces text.
ResultCode WriteText(const JsonDocument& document, std::string& text);

} // namespace JsonSerialization
