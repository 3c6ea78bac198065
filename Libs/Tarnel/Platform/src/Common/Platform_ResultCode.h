#pragma once

#include <cstddef>

namespace Platform {

// The result of every operation that can fail: one pointer to a constant text. A failure's text is an English
// literal that is never freed; success is recognised by the pointer, not by its text. There are no numbers.
//
//   ResultCode result = PlatformHelpers::EnsureFolderExists(folder);
//   if (!result) { PLATFORM_LOG(ErrorLog, " ... Error=%s", result.Text()); return result; }
class [[nodiscard]] ResultCode {
public:
    ResultCode() = default; // success

    // Takes literals alone, so that no result can outlive its text.
    template <std::size_t N>
    consteval explicit(false) ResultCode(const char (&literal)[N]) : m_message(literal) {}

    // A failure without a text of its own; Text() gives "" for it.
    static constexpr ResultCode Fail(std::nullptr_t) { return {nullptr, 0}; }

    constexpr bool Succeeded() const { return m_message == OkText; }
    constexpr explicit operator bool() const { return Succeeded(); }

    // Never null: "OK" for success, "" for a failure without text.
    constexpr const char* Text() const { return m_message ? m_message : ""; }

private:
    constexpr ResultCode(std::nullptr_t, int) : m_message(nullptr) {}

    static constexpr char OkText[] = "OK";
    const char* m_message = OkText;
};

inline constexpr ResultCode Success{};

} // namespace Platform

using Platform::ResultCode;

// Leaves the calling function with the failure of expression, if it is one.
#define RETURN_IF_FAILED(expression)                                                       \
    do {                                                                                   \
        if (const ::Platform::ResultCode returnedResult = (expression); !returnedResult) { \
            return returnedResult;                                                         \
        }                                                                                  \
    } while (false)
