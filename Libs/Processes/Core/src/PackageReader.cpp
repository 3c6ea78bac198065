#include "Libs/Processes/Core/src/PackageReader.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"

namespace {

using PackageFormat::DigestSize;
using PackageFormat::EntryPrefixSize;
using PackageFormat::LengthSize;
using PackageFormat::PrefixSize;

std::string Count(uint64_t count, const char* what) {
    return std::to_string(count) + " " + what;
}

} // namespace

PackageReader::PackageReader(Platform::ByteSource& package) : m_package(package) {
    if (ReadPrefix()) {
        const bool hasHeader = ReadHeader();
        ReadEntries();
        if (hasHeader) {
            NameEntries();
        }
    }
}

bool PackageReader::ReadPrefix() {
    if (m_package.GetSize() < PrefixSize) {
        Report(0, "A package begins with 48 bytes of lengths and digest, but " +
                      Count(m_package.GetSize(), "bytes are all there is"));
        return false;
    }
    const uint64_t present = m_package.GetSize() - PrefixSize;
    uint64_t bodySize = present;
    static_cast<void>(ReadLength(0, "body", bodySize)); // if it can't be read, the body is all there is
    m_bodyDigest = ReadDigest(LengthSize, "body");
    if (bodySize != present) {
        Report(0, "The body is recorded as " + Count(bodySize, "bytes") + ", but " +
                      Count(present, "bytes follow the prefix"));
    }
    m_end = PrefixSize + std::min(bodySize, present);
    constexpr uint64_t lengthAt = LengthSize + DigestSize;
    if (!ReadLength(lengthAt, "header", m_headerSize)) {
        return false;
    }
    if (m_headerSize > m_end - PrefixSize) {
        Report(lengthAt, "The header is recorded as " + Count(m_headerSize, "bytes") + ", but the body has " +
                             Count(m_end - PrefixSize, "bytes"));
        m_headerSize = 0;
        return false;
    }
    return true;
}

bool PackageReader::ReadHeader() {
    ResultCode result = HeaderFile::NoHeader; // a longer text would be refused, after it was read
    JsonProblem problem{{}, "The text is larger than 128 MiB."};
    if (m_headerSize <= JsonSerialization::MaxTextSize) {
        problem.text = "Out of memory"; // unless there is another reason
        result = HeaderFile::Parse(ReadText(PrefixSize, m_headerSize), m_header, &problem);
    }
    if (!result) {
        Report(PrefixSize, "The header can't be read: " + problem.WithPlace());
    }
    return result.Succeeded();
}

void PackageReader::ReadEntries() {
    uint64_t offset = PrefixSize + m_headerSize;
    while (offset < m_end && ReadEntry(offset)) {
        offset = m_entries.back().DataOffset() + m_entries.back().size;
    }
}

// False if nothing after it can be read.
bool PackageReader::ReadEntry(uint64_t offset) {
    const uint64_t left = m_end - offset;
    if (left < EntryPrefixSize) {
        Report(offset, "An entry begins with 40 bytes of length and digest, but the body ends after " +
                           Count(left, "bytes"));
        return false;
    }
    uint64_t size = 0;
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
    entry.size = size;
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

bool PackageReader::ReadLength(uint64_t offset, const char* what, uint64_t& length) {
    uint64_t value = 0;
    for (const char digit : ReadText(offset, LengthSize)) {
        const std::size_t place = std::string_view(PackageFormat::LengthDigits).find(digit);
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

std::string PackageReader::ReadDigest(uint64_t offset, const char* what) {
    std::string digest = ReadText(offset, DigestSize);
    if (digest.find_first_not_of("0123456789abcdef") != std::string::npos) {
        Report(offset, std::string("The digest of the ") + what + " is not 32 lower-case hexadecimal digits");
        return {};
    }
    return digest;
}

// Zeros if the package can't be read.
std::string PackageReader::ReadText(uint64_t offset, uint64_t size) {
    std::string text(static_cast<std::size_t>(size), '\0');
    static_cast<void>(m_package.Read(offset, {reinterpret_cast<uint8_t*>(text.data()), text.size()}));
    return text;
}

void PackageReader::CheckDigests(const Progress& progress) {
    if (m_package.GetSize() < PrefixSize) {
        return;
    }
    Crypto::MD5 body;
    uint64_t hashed = PrefixSize;
    const auto hashUpTo = [&](uint64_t end, Crypto::MD5* entry) {
        // A package that can't be read: see the class.
        static_cast<void>(Platform::ForEachPiece(m_package, hashed, end - hashed, [&](auto piece) {
            body.Update(piece);
            if (entry) {
                entry->Update(piece);
            }
            progress(piece.size());
            return Platform::Success;
        }));
        hashed = end;
    };
    std::vector<Crypto::MD5> entries(m_entries.size());
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        hashUpTo(m_entries[i].DataOffset(), nullptr);
        hashUpTo(m_entries[i].DataOffset() + m_entries[i].size, &entries[i]);
    }
    hashUpTo(m_end, nullptr);
    Compare(body, m_bodyDigest, LengthSize, "Body");
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        const PackageEntry& entry = m_entries[i];
        Compare(entries[i], entry.digest, entry.offset + LengthSize,
                entry.name.empty() ? "Entry" : "\"" + entry.name + "\"");
    }
}

void PackageReader::Compare(const Crypto::MD5& md5, const std::string& recorded, uint64_t offset,
                            const std::string& what) {
    const std::string digest = Crypto::DigestText(md5);
    if (!recorded.empty() && recorded != digest) {
        Report(offset, what + ": the recorded digest is " + recorded + ", that of its bytes " + digest);
    }
}

void PackageReader::Report(uint64_t offset, std::string text) {
    m_problems.push_back({offset, std::move(text)});
}
