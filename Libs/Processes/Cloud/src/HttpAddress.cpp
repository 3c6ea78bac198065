#include "Libs/Processes/Cloud/src/HttpAddress.h"

#include <algorithm>
#include <charconv>

#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace {

using String::AllOf;
using String::IsAlphanumeric;
using String::IsDigit;

bool IsHostName(std::string_view host) {
    if (host.empty() || host.size() > 253) {
        return false;
    }
    std::size_t start = 0;
    while (start <= host.size()) {
        const std::size_t end = std::min(host.find('.', start), host.size());
        const std::string_view label = host.substr(start, end - start);
        if (!AllOf(label, 63, [](char c) { return IsAlphanumeric(c) || c == '-' || c == '_'; })) {
            return false;
        }
        start = end + 1;
    }
    return true;
}

// "[::1]". Connecting checks the digits.
bool IsBracketedAddress(std::string_view host) {
    if (host.size() < 4 || host.front() != '[' || host.back() != ']') {
        return false;
    }
    const std::string_view address = host.substr(1, host.size() - 2);
    return std::count(address.begin(), address.end(), ':') >= 2 && AllOf(address, 45, [](char c) {
               return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == ':' || c == '.';
           });
}

bool ParsePort(std::string_view text, uint16_t& port) {
    if (!AllOf(text, 5, IsDigit)) {
        return false;
    }
    uint32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    port = static_cast<uint16_t>(number);
    return number >= 1 && number <= 65535;
}

bool ParseServer(std::string_view authority, HttpAddress& address) {
    const std::size_t bracket = authority.find(']');
    const std::size_t colon = authority.find(':', bracket == std::string_view::npos ? 0 : bracket);
    if (colon != std::string_view::npos) {
        if (!ParsePort(authority.substr(colon + 1), address.port)) {
            return false;
        }
        authority = authority.substr(0, colon);
    }
    address.host = String::LowerAscii(authority);
    return IsHostName(address.host) || IsBracketedAddress(address.host);
}

} // namespace

std::string HttpAddress::HostHeader() const {
    return port == (secure ? 443 : 80) ? host : host + ":" + std::to_string(port);
}

bool HttpAddress::IsNumeric() const {
    return host.front() == '[' || AllOf(std::string_view(host).substr(host.rfind('.') + 1), 253, IsDigit);
}

bool HttpAddress::IsLoopback() const {
    const auto isByte = [](std::string_view part) {
        return AllOf(part, 3, IsDigit) && (part.size() < 3 || part <= "255");
    };
    if (!host.starts_with("127.")) {
        return host == "localhost" || host == "[::1]";
    }
    std::string_view rest = host;
    for (int dots = 0; dots < 3; ++dots) {
        const std::size_t dot = rest.find('.');
        if (dot == std::string_view::npos || !isByte(rest.substr(0, dot))) {
            return false;
        }
        rest.remove_prefix(dot + 1);
    }
    return isByte(rest);
}

std::optional<HttpAddress> HttpAddress::Parse(std::string_view text) {
    const std::size_t schemeEnd = text.find("://");
    if (schemeEnd == std::string_view::npos) {
        return {};
    }
    const std::string scheme = String::LowerAscii(text.substr(0, schemeEnd));
    if (scheme != "http" && scheme != "https") {
        return {};
    }
    HttpAddress address;
    address.secure = scheme == "https";
    address.port = address.secure ? 443 : 80;
    text.remove_prefix(schemeEnd + 3);
    const std::size_t end = std::min(text.find_first_of("/?"), text.size());
    if (!ParseServer(text.substr(0, end), address)) {
        return {};
    }
    text.remove_prefix(end);
    const auto isSent = [](char c) { return c > ' ' && c < 0x7f && c != '#' && c != '\\'; };
    if (!std::ranges::all_of(text, isSent)) {
        return {};
    }
    address.target = (text.starts_with('/') ? "" : "/") + std::string(text);
    return address;
}
