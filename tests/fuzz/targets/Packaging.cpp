// A submission with any header becomes a package that holds, or none; no file outside of it is read or
// changed.
#include <set>

#include "Libs/Framework/Core/src/PlatformHelpers_Inflate.h"
#include "Libs/Processes/Core/src/AttachmentName.h"
#include "Libs/Processes/Core/src/PackageReader.h"
#include "Libs/Processes/Core/src/PackageWriter.h"
#include "Libs/Processes/Core/src/SubmissionPackager.h"
#include "tests/fuzz/Fuzz.h"

namespace fs = std::filesystem;

namespace {

constexpr char Secret[] = "SECRET";

// The folders of an agent with one submission in it, and files around that are none of its business.
class Agent {
public:
    Agent() {
        fs::create_directories(Submission() / "logs");
        Fuzz::WriteFile(m_root.Path() / "secret.txt", Secret);
        Fuzz::WriteFile(m_root.Path() / "dumps" / "secret.txt", Secret);
        Fuzz::WriteFile(m_root.Path() / "dumps" / "secret.tgz", Secret);
        fs::create_symlink("../secret.txt", Submission() / "link.txt");
        fs::create_directory_symlink("..", Submission() / "linked");
        Fuzz::WriteFile(Submission() / "game.log", std::string(3000, 'L'));
        Fuzz::WriteFile(Submission() / "a_Minidump.dmp", "MDMP");
        Fuzz::WriteFile(Submission() / "data.tgz", "kept as it is");
        Fuzz::WriteFile(Submission() / "logs" / "note.txt", "NOTE");
        Fuzz::WriteFile(Submission() / "empty.txt", "");
        m_config.packageWorkFolder = (m_root.Path() / "work").string();
        m_config.packagedFolder = (m_root.Path() / "packaged").string();
        m_config.submissionFilename = "submission.pkg";
        m_config.attachmentLimits = {{".log", 1000}};
        AttachmentBlacklist::BadPattern bad;
        FUZZ_REQUIRE(m_blacklist.Compile({"\\.tmp$", "^logs[\\\\/]private"}, bad).Succeeded());
    }

    // The package; empty when there is none.
    std::string Pack(std::string_view header) {
        Fuzz::WriteFile(Submission() / "header.json", header);
        std::string name;
        std::string package;
        if (SubmissionPackager(m_config, m_blacklist).Prepare(Submission().string(), name) &&
            PackageWriter(m_config, false).Generate(name)) {
            package = Fuzz::ReadFile(m_root.Path() / "packaged" / "submission" / "submission.pkg");
            FUZZ_REQUIRE(!package.empty());
        }
        fs::remove_all(m_root.Path() / "work");
        fs::remove_all(m_root.Path() / "packaged");
        return package;
    }

    std::set<std::string> Files() const {
        std::set<std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(m_root.Path())) {
            files.insert(entry.path().string());
        }
        return files;
    }

private:
    fs::path Submission() const { return m_root.Path() / "dumps" / "submission"; }

    Fuzz::ScratchFolder m_root{"packaging"};
    PackagerConfig m_config;
    AttachmentBlacklist m_blacklist;
};

std::string Content(const PackageEntry& entry) {
    std::string content;
    PlatformHelpers::InflateProgress progress;
    const auto take = [&](std::span<const uint8_t> piece) {
        content += Fuzz::Text(piece);
        return true;
    };
    FUZZ_REQUIRE(PlatformHelpers::Decompress(entry.data, 1 << 20, take, progress).Succeeded());
    return content;
}

} // namespace

void FuzzOne(std::span<const uint8_t> input) {
    static Agent s_agent;
    static const std::string s_header = "header.json";
    static_cast<void>(s_agent.Pack("{}")); // so that there is a header to count
    const std::set<std::string> before = s_agent.Files();
    const std::string package = s_agent.Pack(Fuzz::Text(input));
    FUZZ_REQUIRE(s_agent.Files() == before);
    if (package.empty()) {
        return;
    }
    PackageReader reader(Fuzz::Bytes(package));
    reader.CheckDigests([](uint64_t) {});
    FUZZ_REQUIRE(reader.GetProblems().empty());
    for (const PackageEntry& entry : reader.GetEntries()) {
        FUZZ_REQUIRE(Content(entry).find(Secret) == std::string::npos);
    }
}
