#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Where a request goes, made of checked parts only, so that every field can be put into a request line or a
// header as it is. Any thread; may throw std::bad_alloc.
struct HttpAddress {
    bool secure = true;
    std::string host; // to connect to: a lower-case name, an IPv4 address or a bracketed IPv6 address
    uint16_t port = 443;
    std::string target = "/"; // path and query as they are sent

    // Host and port, "store.local:8080"; without the port if it is the scheme's default.
    std::string HostHeader() const;

    // The host is an address, not a name. If its last label is a number it counts as an IPv4 address,
    // well-formed or not.
    bool IsNumeric() const;

    // This machine: "localhost", "[::1]" or 127.x.x.x. "127.1" and "127.0.0.1.example" are others.
    bool IsLoopback() const;

    // "https://Store.Local/a?b" is host "store.local" and target "/a?b". Refused are schemes other than http
    // and https, users, fragments, backslashes, and characters outside printable ASCII.
    static std::optional<HttpAddress> Parse(std::string_view text);
};

struct HttpHeader {
    std::string name;
    std::string value;
};
