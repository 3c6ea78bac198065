// A submission with any header becomes a package that holds, or none; no file outside of it is read or
// changed.
#include "Libs/Framework/Core/src/Gzip.h"
#include "Libs/Processes/Core/src/PackageReader.h"
#include "Libs/Processes/Core/src/PackageWriter.h"
#include "Libs/Processes/Core/src/SubmissionPackager.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/ScratchFolder.h"

namespace fs = std::filesystem;

namespace {

// The folders of an agent with one submission, and files around it that no package may hold.
class Agent {
public:
    Agent() {
        for (const char* file : {"secret.txt", "dumps/secret.txt", "dumps/secret.tgz"}) {
            m_root.MakeFile(file, "SECRET");
        }
        for (const char* file : {"game.log", "a_Minidump.dmp", "data.tgz", "logs/note.txt"}) {
            m_root.MakeFile(std::string("dumps/submission/") + file, std::string(3000, 'L'));
        }
        m_root.MakeFile("dumps/submission/empty.txt", "");
        fs::create_symlink("../secret.txt", m_root.Folder() / "dumps/submission/link.txt");
        fs::create_directory_symlink("..", m_root.Folder() / "dumps/submission/linked");
        m_config.packageWorkFolder = m_root.PathOf("work");
        m_config.packagedFolder = m_root.PathOf("packaged");
        m_config.submissionFilename = "submission.pkg";
        m_config.attachmentLimits = {{".log", 1000}};
    }

    // The package; empty if there is none.
    std::string Pack(std::string_view header) {
        m_root.MakeFile("dumps/submission/header.json", header);
        std::string name;
        JsonProblem problem;
        const bool isPacked = SubmissionPackager(m_config, m_blacklist)
                                  .Prepare(m_root.PathOf("dumps/submission"), name, problem) &&
                              PackageWriter(m_config, false).Generate(name);
        const std::string package = m_root.ReadFile("packaged/submission/submission.pkg");
        FUZZ_REQUIRE(isPacked == !package.empty());
        fs::remove_all(m_root.Folder() / "work");
        fs::remove_all(m_root.Folder() / "packaged");
        return package;
    }

    std::ptrdiff_t CountFiles() const {
        return std::distance(fs::recursive_directory_iterator(m_root.Folder()), {});
    }

private:
    TestSupport::ScratchFolder m_root{"fuzz-packaging"};
    PackagerConfig m_config;
    AttachmentBlacklist m_blacklist;
};

std::string Content(Platform::ByteSource& package, const PackageEntry& entry) {
    std::string content;
    PlatformHelpers::InflateProgress progress;
    const auto take = [&](std::span<const uint8_t> piece) {
        content += Fuzz::Text(piece);
        return Platform::Success;
    };
    FUZZ_REQUIRE(PlatformHelpers::Decompress(package, entry.DataOffset(), entry.size, 1 << 20, take, progress)
                     .Succeeded());
    return content;
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    static Agent s_agent;
    const std::string package = s_agent.Pack(Fuzz::Text(input));
    static const std::ptrdiff_t s_files = s_agent.CountFiles();
    FUZZ_REQUIRE(s_agent.CountFiles() == s_files);
    if (!package.empty()) {
        Platform::MemorySource source(Fuzz::Bytes(package));
        PackageReader reader(source);
        reader.CheckDigests([](uint64_t) {});
        FUZZ_REQUIRE(reader.GetProblems().empty());
        for (const PackageEntry& entry : reader.GetEntries()) {
            FUZZ_REQUIRE(Content(source, entry).find("SECRET") == std::string::npos);
        }
    }
}
