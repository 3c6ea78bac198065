#pragma once

#include <string>
#include <string_view>

// UTF-8 to the system's wide form and back, strict: ill-formed input is refused, never replaced. No
// normalisation; PlatformHelpers adds that.
namespace Platform {

enum class EncodingOutcome { Done, InvalidCharacter, OtherFailure };

[[nodiscard]] EncodingOutcome Utf8ToWide(std::string_view text, std::wstring& wide);
[[nodiscard]] EncodingOutcome WideToUtf8(std::wstring_view wide, std::string& text);

} // namespace Platform
