#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// What is the same for every client of the store: how a package is named and announced, and how the store's
// answer is judged. Any thread; nothing is kept.

// One request for the whole package, its answer checked against the bytes that were sent. A second sending of
// the same bytes lands under the same key. After a failure the object may be in the bucket all the same.
ResultCode PutPackage(IObjectStore& store, std::span<const uint8_t> package);

// Key: the package's MD5 in 32 lower-case digits, so that the store is addressed by content.
PutObjectRequest RequestForPackage(std::span<const uint8_t> package);

// True for the quoted key alone: "0cc1...e1" with its quotes, in that case. An upper-case, unquoted or
// multipart tag ("...-2") comes from a store that hashed something else than these bytes in one piece.
[[nodiscard]] bool ETagMatches(std::string_view eTag, std::span<const uint8_t> package);

// The length a request announces: taken as a signed 32-bit number. Packages are far below 2 GiB; a larger one
// is announced wrongly, so no store takes it.
[[nodiscard]] int64_t AnnouncedLength(std::size_t packageSize);

// With padding, without line breaks.
[[nodiscard]] std::string Base64Encode(std::span<const uint8_t> bytes);
