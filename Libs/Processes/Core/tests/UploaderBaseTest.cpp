#include "Libs/Processes/Core/src/UploaderBase.h"

#include <fstream>
#include <optional>

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
    std::size_t sent = 0;
    bool isOpen = true;                  // uploads may end
    bool hasFailed = false;              // memory
    std::optional<std::size_t> nthFails; // the uploader's allocations are counted from its first round on

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

    ResultCode UploadPackage(Platform::ByteSource&) override {
        while (!m_board.With([&] { return m_board.isOpen; })) {
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
        m_board.With([&] { tasks.swap(m_board.offered); });
        return "A failure that the uploader does not mind";
    }

private:
    Board& m_board;
};

class UploaderTest : public ProcessFixture {
protected:
    void Start() {
        GetMainThreadId();
        m_uploader = std::make_shared<HoldingUploader>(
            m_application.get(), m_board, std::make_shared<Offerings>(m_application.get(), m_board));
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

    Board m_board;
    std::shared_ptr<HoldingUploader> m_uploader;
};

TEST_F(UploaderTest, RunsFourAtOnceTheLatestFirstAndAStopLeavesTheRest) {
    m_board.isOpen = false;
    const Names f = Offer({"1", "2", "3", "4", "5", "6"});
    Start();
    ASSERT_TRUE(Await([&] { return m_board.With([&] { return m_board.started.size() >= 4; }); }));
    Stop();
    EXPECT_EQ(m_board.started, (Names{f[5], f[4], f[3], f[2]}));
    EXPECT_EQ(m_board.sent, 4u);
    EXPECT_TRUE(m_scratch.Exists("1/submission.pkg") && m_scratch.Exists("2/submission.pkg"));
}

TEST_F(UploaderTest, WithoutMemoryEveryFolderIsStillSentOnce) {
    m_board.hasFailed = true;
    for (std::size_t nth = 0; m_board.hasFailed; ++nth) {
        SCOPED_TRACE(nth);
        m_board.sent = 0;
        m_board.nthFails = nth;
        Offer({"1", "2", "3"});
        Start();
        ASSERT_TRUE(Await(
            [&] { return !m_scratch.Exists("1") && !m_scratch.Exists("2") && !m_scratch.Exists("3"); }));
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
    for (const char* name : {"empty", "missing", "written"}) {
        ASSERT_TRUE(HeldUpload(UploadPermission::Allowed, m_scratch.PathOf(name), m_board).Start());
        EXPECT_TRUE(m_scratch.Exists(name));
    }
    EXPECT_EQ(m_log.Errors().size(), 3u);
    EXPECT_EQ(m_board.sent, 0u);
}

} // namespace
