#include "Libs/Processes/Cloud/src/S3Upload.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>
#include <utility>

#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

namespace {

ResultCode Digest(Platform::ByteSource& package, Crypto::MD5& md5) {
    RETURN_IF_FAILED(Platform::ForEachPiece(package, 0, package.GetSize(), [&](auto piece) {
        md5.Update(piece);
        return Platform::Success;
    }));
    md5.Finish();
    return Platform::Success;
}

} // namespace

ResultCode PutPackage(IObjectStore& store, Platform::ByteSource& package, bool verifyETag,
                      UploadAnswer& answer) {
    static constexpr char NotPut[] = "Failed to put stream in S3 bucket";
    if (!std::cmp_equal(AnnouncedLength(package.GetSize()), package.GetSize())) {
        return NotPut;
    }
    PutObjectRequest request;
    if (!RequestForPackage(package, request)) {
        return NotPut;
    }
    PutAnswer put;
    const ResultCode result = store.PutObject(request, put);
    answer = {request.key, put.httpStatus, put.retryAfterSeconds};
    if (!result) {
        return NotPut;
    }
    if (!verifyETag) { // the store has taken the body by its Content-MD5
        return Platform::Success;
    }
    // Hashed again, so that the check covers the bytes as they are after sending. A tag that is unquoted, in
    // upper case or of several parts ("...-2") comes from a store that hashed something else.
    Crypto::MD5 sent;
    if (!Digest(package, sent) || put.eTag != "\"" + Crypto::ToHex(sent.Digest()) + "\"") {
        return "MD5 of stream received by S3 doesn't match the MD5 we computed locally";
    }
    return Platform::Success;
}

ResultCode RequestForPackage(Platform::ByteSource& package, PutObjectRequest& request) {
    Crypto::MD5 md5;
    RETURN_IF_FAILED(Digest(package, md5));
    request.key = Crypto::ToHex(md5.Digest());
    request.contentMd5 = Base64Encode(md5.Digest());
    request.contentType = "application/octet-stream";
    request.contentLength = AnnouncedLength(package.GetSize());
    request.body = &package;
    return Platform::Success;
}

int64_t AnnouncedLength(uint64_t packageSize) {
    return static_cast<int32_t>(static_cast<uint32_t>(packageSize)); // deliberately narrowed, see the header
}

ResultCode LoggedStep(ResultCode step, uint32_t number, std::string_view answer, const char* whom) {
    const std::string code(S3ErrorCode(answer));
    const std::string why = number != 0 ? ": " + std::to_string(number) : "";
    PLATFORM_LOG(Platform::ErrorLog, " Upload stopped at: %s%s%s%s%s", whom, step.Text(), why.c_str(),
                 code.empty() ? "" : " ", code.c_str());
    return step;
}

uint32_t RetryAfterSeconds(std::string_view value) {
    uint32_t seconds = 0;
    const char* const end = value.data() + value.size();
    const auto [rest, error] = std::from_chars(value.data(), end, seconds);
    if (rest != end || error == std::errc::invalid_argument) {
        return 0;
    }
    return error == std::errc() ? seconds : std::numeric_limits<uint32_t>::max();
}

std::string_view S3ErrorCode(std::string_view answer) {
    constexpr std::string_view Before = "<Code>";
    const std::size_t start = answer.find(Before);
    const std::size_t end = answer.find("</Code>");
    if (start == std::string_view::npos || end == std::string_view::npos || end < start) {
        return {};
    }
    const std::string_view code = answer.substr(start + Before.size(), end - start - Before.size());
    return String::AllOf(code, 64, String::IsLetter) ? code : std::string_view();
}

std::string Base64Encode(std::span<const uint8_t> bytes) {
    static constexpr char Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        uint32_t group = 0; // three bytes, the missing ones zero
        for (std::size_t j = 0; j < 3; ++j) {
            group = group << 8 | (j < count ? bytes[i + j] : 0u);
        }
        for (std::size_t j = 0; j < 4; ++j) {
            text += j <= count ? Digits[group >> (18 - 6 * j) & 63] : '=';
        }
    }
    return text;
}
