#pragma once

#include "Libs/Processes/Core/src/UploaderBase.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

#include <gtest/gtest.h>

#include "Libs/Processes/Core/src/Watcher.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

// A real uploader with its threads, whose uploads go on when the test says so.
namespace UploaderTest {

using Names = std::vector<std::string>;

// What the threads of a test tell each other. Outlives them all.
class Board {
public:
    // Changes something and wakes who waits for it.
    void Tell(const std::function<void(Board&)>& change) {
        const std::lock_guard lock(m_lock);
        change(*this);
        m_changed.notify_all();
    }

    [[nodiscard]] bool Await(const std::function<bool(const Board&)>& condition) {
        std::unique_lock lock(m_lock);
        return m_changed.wait_for(lock, std::chrono::seconds(10), [&] { return condition(*this); });
    }

    Names started;    // folders, in their order
    Names finishable; // folders whose upload may go on
    bool allFinishable = false;
    std::size_t sent = 0;  // calls of UploadPackage
    std::size_t letGo = 0; // uploads that their uploader is destroying
    std::size_t destroyed = 0;
    std::size_t passes = 0; // how often the watcher was asked
    std::size_t asked = 0;
    uint32_t askedOn = 0; // thread id

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
};

class HeldUpload final : public UploaderThreadBase {
public:
    HeldUpload(UploadPermission permission, const std::string& folder, Board& board)
        : UploaderThreadBase(permission, folder, "submission.pkg", 0), m_board(board) {}
    ~HeldUpload() override {
        m_board.Tell([](Board& board) { ++board.letGo; });
        WaitForEnd();
        m_board.Tell([](Board& board) { ++board.destroyed; });
    }

    ResultCode UploadPackage(const std::vector<uint8_t>&) override {
        m_board.Tell([](Board& board) { ++board.sent; });
        const bool released = m_board.Await([this](const Board& board) {
            return board.allFinishable || std::ranges::count(board.finishable, GetFolder()) != 0;
        });
        return released ? Platform::Success : ResultCode("Nobody let the upload go on");
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
    uint32_t GetTimeBetweenChecks() const override { return 1; }
    void StartUploadThread(const std::string& folder, UploadPermission permission) override {
        auto upload = std::make_shared<HeldUpload>(permission, folder, m_board);
        AddActiveUpload(upload);
        if (m_startsThreads) {
            EXPECT_TRUE(upload->Start());
        }
        m_board.Tell([&](Board& board) { board.started.push_back(folder); });
    }

    using UploaderBase::AddActiveUpload;

    bool m_startsThreads = true;

private:
    Board& m_board;
};

// Hands over exactly what the test offers, so that a batch arrives as one.
class Offerings : public Watcher {
public:
    Offerings(ApplicationBase* application, Board& board) : Watcher(application, "Watcher"), m_board(board) {}

    bool ThreadMain() override { return true; }
    ResultCode TakeTasks(std::vector<TaskData>& tasks) override {
        m_board.Tell([&](Board& board) {
            ++board.passes;
            tasks.swap(m_tasks);
        });
        return "A failure that the uploader does not mind";
    }
    void Offer(const Names& folders) {
        m_board.Tell([&](Board&) {
            for (const std::string& folder : folders) {
                m_tasks.emplace_back(folder.c_str());
            }
        });
    }

private:
    Board& m_board;
    std::vector<TaskData> m_tasks; // under the board's lock
};

class AnsweringApplication : public ApplicationBase {
public:
    AnsweringApplication(Board& board, UploadPermission answer, ResultCode result)
        : m_board(board), m_answer(answer), m_result(result) {}

    ResultCode AskUploadPermission(UploadPermission& answer) override {
        EXPECT_EQ(UploadPermission::Refused, answer); // what holds when nobody writes one
        answer = m_answer;
        m_board.Tell([](Board& board) {
            ++board.asked;
            board.askedOn = GetCurrentThreadIdImpl();
        });
        return m_result;
    }

private:
    Board& m_board;
    UploadPermission m_answer;
    ResultCode m_result;
};

class UploaderFixture : public testing::Test {
protected:
    void Run(bool ask, UploadPermission answer = UploadPermission::Allowed, ResultCode result = {}) {
        GetMainThreadId();
        m_application = std::make_shared<AnsweringApplication>(m_board, answer, result);
        m_watcher = std::make_shared<Offerings>(m_application.get(), m_board);
        m_uploader = std::make_shared<HoldingUploader>(m_application.get(), m_board, m_watcher);
        m_uploader->SetAskPermission(ask);
    }
    void Start() { ASSERT_TRUE(m_uploader->Start()); }
    void TearDown() override {
        if (m_uploader) {
            LetAllFinish();
            Stop();
        }
    }

    Names Offer(const Names& names) {
        Names folders;
        for (const std::string& name : names) {
            m_scratch.MakeFile(name + "/submission.pkg", "pkg");
            folders.push_back(m_scratch.PathOf(name));
        }
        m_watcher->Offer(folders);
        return folders;
    }
    void LetFinish(const std::string& folder) {
        m_board.Tell([&](Board& board) { board.finishable.push_back(folder); });
    }
    void LetAllFinish() {
        m_board.Tell([](Board& board) { board.allFinishable = true; });
    }
    bool AwaitStarts(std::size_t count) {
        return m_board.Await([=](const Board& board) { return board.started.size() >= count; });
    }
    bool AwaitDestroyed(std::size_t count) {
        return m_board.Await([=](const Board& board) { return board.destroyed >= count; });
    }
    // Two whole passes of the run loop from now.
    bool AwaitPasses() {
        std::size_t before = 0;
        m_board.Tell([&](Board& board) { before = board.passes; });
        return m_board.Await([=](const Board& board) { return board.passes >= before + 3; });
    }
    void Stop() {
        m_uploader->RequestShutdown();
        m_uploader->GetThread()->Join(); // bounded: the uploads wait ten seconds at most
    }

    TestSupport::ScratchFolder m_scratch;
    TestSupport::LogCapture m_log;
    Board m_board;
    std::shared_ptr<AnsweringApplication> m_application;
    std::shared_ptr<Offerings> m_watcher;
    std::shared_ptr<HoldingUploader> m_uploader;
};

} // namespace UploaderTest
