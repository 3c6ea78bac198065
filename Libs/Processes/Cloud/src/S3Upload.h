#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Processes/Core/src/UploadRetries.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// What every client of the store does alike: how a package is named and announced, and how the answer is
// judged. Any thread; no state. All may throw std::bad_alloc.

// Sends the whole package in one request and checks the answer's ETag against the bytes that were sent,
// unless verifyETag is false. The same bytes sent again land under the same key. After a failure the object
// may be in the bucket nevertheless. A package of 2 GiB or more fails before anything is done.
ResultCode PutPackage(IObjectStore& store, Platform::ByteSource& package, bool verifyETag,
                      UploadAnswer& answer);

// The key is the package's MD5 in 32 lower-case digits, so that the content is its address. Fails if the
// package can't be read.
ResultCode RequestForPackage(Platform::ByteSource& package, PutObjectRequest& request);

// The length that a request announces: taken as a signed 32-bit number. Packages are far below 2 GiB; a
// larger one is announced wrongly and taken by no store.
[[nodiscard]] int64_t AnnouncedLength(uint64_t packageSize);

// Logs why an upload failed, for the clients: the step, with whom it was if that is not the store, the
// system's or HTTP's number, 0 for none, and S3's code if the beginning of the store's answer has one.
// Returns the step.
ResultCode LoggedStep(ResultCode step, uint32_t number, std::string_view answer, const char* whom = "");

// Of a Retry-After header: 0 unless it is a number of seconds. The form with a date is not obeyed, since the
// player's clock may be wrong.
[[nodiscard]] uint32_t RetryAfterSeconds(std::string_view value);

// The code of an error answer, such as SignatureDoesNotMatch. Empty if there is none of 1 to 64 letters:
// nothing else of what a store says is shown.
[[nodiscard]] std::string_view S3ErrorCode(std::string_view answer);

// With padding, without line breaks.
[[nodiscard]] std::string Base64Encode(std::span<const uint8_t> bytes);
