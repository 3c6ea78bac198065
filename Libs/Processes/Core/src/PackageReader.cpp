#include "Libs/Processes/Core/src/PackageReader.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

namespace {

using PackageFormat::DigestSize;
using PackageFormat::EntryPrefixSize;
using PackageFormat::LengthSize;
using PackageFormat::PrefixSize;

std::string_view AsText(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string DigestOf(std::span<const uint8_t> bytes, const PackageReader::Progress& progress) {
    constexpr std::size_t Piece = 1 << 20;
    Crypto::MD5 md5;
    while (!bytes.empty()) {
        const auto piece = bytes.first(std::min(bytes.size(), Piece));
        md5.Update(piece);
        progress(piece.size());
        bytes = bytes.subspan(piece.size());
    }
    md5.Finish();
    return Crypto::ToHex(md5.Digest());
}

std::string Count(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what;
}

} // namespace

PackageReader::PackageReader(std::span<const uint8_t> package) : m_package(package) {
    if (ReadPrefix()) {
        const bool hasHeader = ReadHeader();
        ReadEntries();
        if (hasHeader) {
            NameEntries();
        }
    }
}

bool PackageReader::ReadPrefix() {
    if (m_package.size() < PrefixSize) {
        Report(0, "A package begins with 48 bytes of lengths and digest, but " +
                      Count(m_package.size(), "bytes are all there is"));
        return false;
    }
    const std::size_t present = m_package.size() - PrefixSize;
    std::size_t bodySize = present;
    static_cast<void>(ReadLength(0, "body", bodySize)); // if it can't be read, the body is all there is
    m_bodyDigest = ReadDigest(LengthSize, "body");
    if (bodySize != present) {
        Report(0, "The body is recorded as " + Count(bodySize, "bytes") + ", but " +
                      Count(present, "bytes follow the prefix"));
    }
    m_end = PrefixSize + std::min(bodySize, present);
    const std::size_t lengthAt = LengthSize + DigestSize;
    if (!ReadLength(lengthAt, "header", m_headerSize)) {
        return false;
    }
    if (m_headerSize > m_end - PrefixSize) {
        Report(lengthAt, "The header is recorded as " + Count(m_headerSize, "bytes") + ", but the body has " +
                             Count(m_end - PrefixSize, "bytes"));
        return false;
    }
    return true;
}

bool PackageReader::ReadHeader() {
    m_headerBytes = m_package.subspan(PrefixSize, m_headerSize);
    if (const ResultCode result = HeaderFile::Parse(AsText(m_headerBytes), m_header); !result) {
        Report(PrefixSize, result.Text());
        return false;
    }
    return true;
}

void PackageReader::ReadEntries() {
    std::size_t offset = PrefixSize + m_headerSize;
    while (offset < m_end && ReadEntry(offset)) {
        offset += EntryPrefixSize + m_entries.back().data.size();
    }
}

// False if nothing after it can be read.
bool PackageReader::ReadEntry(std::size_t offset) {
    const std::size_t left = m_end - offset;
    if (left < EntryPrefixSize) {
        Report(offset, "An entry begins with 40 bytes of length and digest, but the body ends after " +
                           Count(left, "bytes"));
        return false;
    }
    std::size_t size = 0;
    if (!ReadLength(offset, "entry", size)) {
        return false;
    }
    PackageEntry entry;
    entry.offset = offset;
    entry.digest = ReadDigest(offset + LengthSize, "entry");
    if (size > left - EntryPrefixSize) {
        Report(offset, "The entry is recorded as " + Count(size, "bytes") + ", but the body ends after " +
                           Count(left - EntryPrefixSize, "bytes"));
        return false;
    }
    entry.data = m_package.subspan(offset + EntryPrefixSize, size);
    m_entries.push_back(std::move(entry));
    return true;
}

void PackageReader::NameEntries() {
    const std::vector<const Attachment*> files = m_header.catalog.FilesInPackageOrder();
    if (files.size() != m_entries.size()) {
        Report(PrefixSize, "The header's catalog names " + Count(files.size(), "files") +
                               ", but the package holds " + Count(m_entries.size(), "entries"));
    }
    for (std::size_t i = 0; i < std::min(files.size(), m_entries.size()); ++i) {
        PackageEntry& entry = m_entries[i];
        entry.name = files[i]->file;
        if (!IsSafeAttachmentName(entry.name)) {
            Report(PrefixSize, "The header's catalog has an unsafe file name: \"" + entry.name + "\"");
        }
        if (files[i]->md5 != entry.digest) {
            Report(entry.offset + LengthSize, "\"" + entry.name + "\": the entry records the digest " +
                                                  entry.digest + ", the header \"" + files[i]->md5 + "\"");
        }
    }
}

bool PackageReader::ReadLength(std::size_t offset, const char* what, std::size_t& length) {
    std::size_t value = 0;
    for (const char digit : AsText(m_package.subspan(offset, LengthSize))) {
        const std::size_t place = std::string_view("0123456789ABCDEF").find(digit);
        if (place == std::string_view::npos) {
            Report(offset,
                   std::string("The length of the ") + what + " is not eight upper-case hexadecimal digits");
            return false;
        }
        value = value << 4 | place;
    }
    length = value;
    return true;
}

std::string PackageReader::ReadDigest(std::size_t offset, const char* what) {
    const std::string_view digest = AsText(m_package.subspan(offset, DigestSize));
    if (digest.find_first_not_of("0123456789abcdef") != std::string_view::npos) {
        Report(offset, std::string("The digest of the ") + what + " is not 32 lower-case hexadecimal digits");
        return {};
    }
    return std::string(digest);
}

void PackageReader::CheckDigests(const Progress& progress) {
    const auto check = [&](std::span<const uint8_t> bytes, const std::string& recorded, std::size_t offset,
                           const std::string& what) {
        const std::string digest = DigestOf(bytes, progress);
        if (!recorded.empty() && recorded != digest) {
            Report(offset, what + ": the recorded digest is " + recorded + ", that of its bytes " + digest);
        }
    };
    if (m_package.size() < PrefixSize) {
        return;
    }
    check(m_package.subspan(PrefixSize, m_end - PrefixSize), m_bodyDigest, LengthSize, "Body");
    for (const PackageEntry& entry : m_entries) {
        check(entry.data, entry.digest, entry.offset + LengthSize,
              entry.name.empty() ? "Entry" : "\"" + entry.name + "\"");
    }
}

void PackageReader::Report(std::size_t offset, std::string text) {
    m_problems.push_back({offset, std::move(text)});
}
