#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wclass-memaccess"
#endif
#include <rapidjson/document.h>

#include "bench/src/HeaderText.h"

namespace Bench {

bool ParseBare(const std::string& text) {
    rapidjson::Document document;
    return !document.Parse(text.data(), text.size()).HasParseError();
}

} // namespace Bench
