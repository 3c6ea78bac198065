#include "Libs/Processes/Core/src/AttachmentPacker.h"

#include <utility>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/Gzip.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Tarnel/Crypto/src/Crypto_MD5.h"

namespace {

// A file of the work folder while it is written. Deleted again unless it is finished, so that the next one
// has the space.
class PreparedFile {
public:
    explicit PreparedFile(std::string path) : m_path(std::move(path)) {}
    ~PreparedFile() {
        if (m_isUnfinished) {
            m_file = {}; // closed, before it can be deleted
            static_cast<void>(Platform::RemoveFile(m_path));
        }
    }
    PreparedFile(const PreparedFile&) = delete; // it is deleted once
    PreparedFile& operator=(const PreparedFile&) = delete;

    ResultCode Create() {
        m_isUnfinished =
            m_file.Open(m_path, Platform::FileWrite | Platform::FileCreateAndTruncate) == Platform::NoError;
        return m_isUnfinished ? Platform::Success : ResultCode("Failed to open input file");
    }

    ResultCode Append(std::span<const uint8_t> piece) {
        if (m_size + piece.size() > PackageFormat::MaxLength) {
            return SubmissionFault::TooLong;
        }
        if (m_file.Write(m_size, piece) != Platform::NoError) {
            return "Failed to write file bytes";
        }
        m_size += piece.size();
        m_md5.Update(piece);
        return Platform::Success;
    }

    ResultCode Finish(std::string& md5) {
        md5 = Crypto::DigestText(m_md5);
        if (!m_file.Close()) {
            return "Failed to write file bytes";
        }
        m_isUnfinished = false;
        return Platform::Success;
    }

private:
    const std::string m_path;
    Platform::File m_file;
    Crypto::MD5 m_md5;
    uint64_t m_size = 0;
    bool m_isUnfinished = false;
};

// Has fill append the stored form of a file of the submission.
template <class Fill> // ResultCode fill(PreparedFile& target)
ResultCode Store(const std::string& workFolder, const std::string& storedName, std::string& md5, Fill fill) {
    const std::string path = FolderPath::Join(workFolder, storedName);
    if (storedName.find_first_of("\\/") != std::string::npos) {
        RETURN_IF_FAILED(PlatformHelpers::EnsureFolderExists(path.substr(0, path.find_last_of("\\/"))));
    }
    PreparedFile target(path);
    RETURN_IF_FAILED(target.Create());
    RETURN_IF_FAILED(fill(target));
    return target.Finish(md5);
}

} // namespace

ResultCode AttachmentPacker::Pack(Attachment& attachment) const {
    return ExceptionToResult([&] { return PackFile(attachment); });
}

ResultCode AttachmentPacker::PackFile(Attachment& attachment) const {
    const std::string& name = attachment.file;
    SubmissionFolder::FoundAttachment found;
    RETURN_IF_FAILED(m_submission.OpenAttachment(name, found));
    Platform::FileSource source(std::move(found.file));
    if (!found.isCompressed) {
        return Compress(source, name, attachment.md5);
    }
    return Copy(source, LooksCompressed(name) ? name : name + ".gz", attachment.md5);
}

ResultCode AttachmentPacker::Copy(Platform::ByteSource& source, const std::string& storedName,
                                  std::string& md5) const {
    return Store(m_workFolder, storedName, md5, [&](PreparedFile& target) {
        return Platform::ForEachPiece(source, 0, source.GetSize(),
                                      [&](auto piece) { return target.Append(piece); });
    });
}

ResultCode AttachmentPacker::Compress(Platform::ByteSource& source, const std::string& name,
                                      std::string& md5) const {
    LimitedBytes content(source, m_limits, name);
    return Store(m_workFolder, name + ".gz", md5, [&](PreparedFile& target) {
        return PlatformHelpers::Compress(content, [&](auto piece) { return target.Append(piece); });
    });
}
