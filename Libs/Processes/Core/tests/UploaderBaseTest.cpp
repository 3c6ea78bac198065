#include "Libs/Processes/Core/src/UploaderBase.h"

#include <fstream>
#include <optional>
#include <set>

#include "Libs/Processes/Core/src/Watcher.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/ProcessFixture.h"

namespace {

using Names = std::vector<std::string>;

// What the threads of a test tell each other.
struct Board {
    std::mutex lock;
    std::vector<TaskData> offered;
    Names started;
    std::set<std::string> finishable; // uploads that may end
    std::size_t sent = 0;
    std::size_t asked = 0;
    std::size_t rounds = 0;
    bool isOpen = true;
    bool hasFailed = false;              // memory
    std::optional<std::size_t> nthFails; // the uploader's allocations are counted from its first round on
    ResultCode askResult;
    UploadPermission answer = UploadPermission::Allowed;

    template <class Change>
    auto With(Change&& change) {
        const std::lock_guard guard(lock);
        return change();
    }
};

class HeldUpload final : public UploaderThreadBase {
public:
    HeldUpload(UploadPermission permission, const std::string& folder, Board& board)
        : UploaderThreadBase(permission, folder, "submission.pkg", 0), m_board(board) {}
    ~HeldUpload() override { WaitForEnd(); }

    ResultCode UploadPackage(const std::vector<uint8_t>&) override {
        while (!m_board.With([&] { return m_board.isOpen || m_board.finishable.contains(GetFolder()); })) {
            std::this_thread::yield();
        }
        m_board.With([&] { ++m_board.sent; });
        return Platform::Success;
    }

private:
    Board& m_board;
};

class HoldingUploader : public UploaderBase {
public:
    HoldingUploader(ApplicationBase* application, Board& board, std::shared_ptr<IApplicationProcess> watcher)
        : UploaderBase(application, "Uploader"), m_board(board) {
        SetWatcher(std::move(watcher));
    }
    ResultCode Initialize(const JsonDocument&, int, const char**) override { return Platform::Success; }
    uint32_t GetTimeBetweenChecks() const override {
        if (m_board.nthFails) { // the first call on the uploader's thread
            m_memory.emplace(*m_board.nthFails);
        }
        return 1;
    }
    void StartUploadThread(const std::string& folder, UploadPermission permission) override {
        auto upload = std::make_shared<HeldUpload>(permission, folder, m_board);
        m_board.With([&] { m_board.started.push_back(folder); });
        AddActiveUpload(upload);
        EXPECT_TRUE(upload->Start());
        m_board.With([&] { m_board.hasFailed = m_memory && m_memory->HasFailed(); });
    }

private:
    Board& m_board;
    mutable std::optional<TestSupport::FailingMemory> m_memory;
};

// Hands over what the test offers, so that a batch arrives as one.
class Offerings : public Watcher {
public:
    Offerings(ApplicationBase* application, Board& board) : Watcher(application, "Watcher"), m_board(board) {}
    ResultCode TakeTasks(std::vector<TaskData>& tasks) override {
        m_board.With([&] {
            ++m_board.rounds;
            tasks.swap(m_board.offered);
        });
        return "A failure that the uploader does not mind";
    }

private:
    Board& m_board;
};

class AnsweringApplication : public ApplicationBase {
public:
    explicit AnsweringApplication(Board& board) : m_board(board) {}
    ResultCode AskUploadPermission(UploadPermission& answer) override {
        ++m_board.asked;
        answer = m_board.answer;
        return m_board.askResult;
    }

private:
    Board& m_board;
};

class UploaderTest : public ProcessFixture {
protected:
    void Start(bool ask = false) {
        GetMainThreadId();
        m_application = std::make_shared<AnsweringApplication>(m_board);
        m_uploader = std::make_shared<HoldingUploader>(
            m_application.get(), m_board, std::make_shared<Offerings>(m_application.get(), m_board));
        m_uploader->SetAskPermission(ask);
        ASSERT_TRUE(m_uploader->Start());
    }
    void Stop() {
        m_uploader->RequestShutdown();
        m_board.With([&] { m_board.isOpen = true; });
        m_uploader->GetThread()->Join();
    }
    Names Offer(const Names& names) {
        Names folders;
        m_board.With([&] {
            for (const std::string& name : names) {
                m_scratch.MakeFile(name + "/submission.pkg", "pkg");
                folders.push_back(m_scratch.PathOf(name));
                m_board.offered.emplace_back(folders.back().c_str());
            }
        });
        return folders;
    }
    bool AwaitStarts(std::size_t count) {
        return Await([=, this] { return m_board.With([&] { return m_board.started.size() >= count; }); });
    }
    bool AwaitGone(const Names& names) {
        return Await([&] {
            return std::ranges::none_of(names, [&](const auto& name) { return m_scratch.Exists(name); });
        });
    }

    Board m_board;
    std::shared_ptr<HoldingUploader> m_uploader;
};

TEST_F(UploaderTest, RunsFourAtOnceTheLatestFirst) {
    m_board.isOpen = false;
    const Names f = Offer({"1", "2", "3", "4", "5", "6"});
    Start();
    ASSERT_TRUE(AwaitStarts(4));
    const std::size_t rounds = m_board.With([&] { return m_board.rounds; });
    ASSERT_TRUE(Await([&] { return m_board.With([&] { return m_board.rounds > rounds + 2; }); }));
    EXPECT_EQ(m_board.started, (Names{f[5], f[4], f[3], f[2]}));
    m_board.With([&] { m_board.finishable.insert(f[3]); });
    ASSERT_TRUE(AwaitStarts(5));
    m_board.With([&] { m_board.isOpen = true; });
    ASSERT_TRUE(AwaitGone({"1", "2", "3", "4", "5", "6"}));
    Stop();
    EXPECT_EQ(m_board.started, (Names{f[5], f[4], f[3], f[2], f[1], f[0]}));
    EXPECT_EQ(m_board.asked, 0u);
}

TEST_F(UploaderTest, AsksOnceAndNothingButYesAllows) {
    const struct {
        const char* what;
        UploadPermission answer;
        ResultCode result;
        std::size_t sent;
    } rows[] = {
        {"yes", UploadPermission::Allowed, Platform::Success, 3},
        {"no", UploadPermission::Refused, Platform::Success, 0},
        {"the question failed", UploadPermission::Allowed, "No window", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        m_board.sent = m_board.asked = 0;
        m_board.answer = row.answer;
        m_board.askResult = row.result;
        Start(true);
        Offer({"1", "2"});
        EXPECT_TRUE(AwaitGone({"1", "2"}));
        Offer({"3"});
        EXPECT_TRUE(AwaitGone({"3"}));
        Stop();
        EXPECT_EQ(m_board.asked, 1u);
        EXPECT_EQ(m_board.sent, row.sent);
    }
    EXPECT_EQ(m_log.Errors(),
              Names{" Failed to get user's permission to upload crash report. Error=No window"});
}

TEST_F(UploaderTest, AStopWaitsForUploadsInFlightAndLeavesTheRest) {
    m_board.isOpen = false;
    Offer({"1", "2", "3", "4", "5"});
    Start();
    ASSERT_TRUE(AwaitStarts(4));
    m_uploader->RequestShutdown();
    EXPECT_TRUE(Await(
        [&] { return m_log.Contains(Platform::InfoLog, " Waiting for 4 active uploads to complete"); }));
    EXPECT_EQ(m_uploader->GetThread()->GetStatus(), Thread::Status::Running);
    Stop();
    EXPECT_EQ(m_board.sent, 4u);
    EXPECT_TRUE(m_scratch.Exists("1/submission.pkg"));
}

TEST_F(UploaderTest, WithoutMemoryEveryFolderIsStillSentOnce) {
    m_board.hasFailed = true;
    for (std::size_t nth = 0; m_board.hasFailed; ++nth) {
        SCOPED_TRACE(nth);
        m_board.sent = 0;
        m_board.nthFails = nth;
        Offer({"1", "2", "3"});
        Start();
        ASSERT_TRUE(AwaitGone({"1", "2", "3"}));
        Stop();
        EXPECT_EQ(m_board.sent, 3u);
    }
}

TEST_F(UploaderTest, WhatCantBeLoadedStays) {
    m_scratch.MakeFile("empty/submission.pkg", "");
    m_scratch.MakeFolder("missing");
    const std::string written = m_scratch.MakeFolder("written") + "\\submission.pkg";
    std::ofstream writer(TestSupport::ScratchFolder::FromUtf8(written));
    writer << "pkg" << std::flush;
    const struct {
        const char* name;
        const char* error;
    } rows[] = {{"empty", "Failed to read package file of invalid size"},
                {"missing", "Failed to open package file"},
                {"written", "Failed to open package file"}};
    for (const auto& row : rows) {
        const std::string folder = m_scratch.PathOf(row.name);
        ASSERT_TRUE(HeldUpload(UploadPermission::Allowed, folder, m_board).Start());
        EXPECT_EQ(m_log.Errors().back(),
                  " Failed to load package in \"" + folder + "\" for upload . Error=" + row.error);
        EXPECT_TRUE(m_scratch.Exists(row.name));
    }
    EXPECT_EQ(m_board.sent, 0u);
}

} // namespace
