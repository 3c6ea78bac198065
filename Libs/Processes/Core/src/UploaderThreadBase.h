#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/Thread.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Processes/Core/src/UploadRetries.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// One attempt to upload one submission folder, on a thread of its own: opens the package, hands it to the
// concrete upload and deletes the folder after success, or deletes it unread when the player refused. After a
// failure the folder stays. Owned by its uploader; made, started, asked and destroyed on the uploader's
// thread.
//
// Destruction waits for the thread without limit. The thread calls UploadPackage, so a derived class is final
// and its destructor begins with WaitForEnd, before anything that the upload uses is gone.
class UploaderThreadBase {
public:
    // Copies what it needs of the configuration.
    UploaderThreadBase(UploadPermission permission, std::string folder, const UploaderConfig& config);
    virtual ~UploaderThreadBase();
    UploaderThreadBase(const UploaderThreadBase&) = delete; // the running thread holds the object's address
    UploaderThreadBase& operator=(const UploaderThreadBase&) = delete;

    // Sends the whole package to the store. Called at most once, on the upload's own thread. Nobody can write
    // to the package meanwhile. A success means that the store has confirmed it: the folder is deleted then.
    // answer is filled as far as it is known, also after a failure.
    virtual ResultCode UploadPackage(Platform::ByteSource& package, UploadAnswer& answer) = 0;

    // Starts the thread; once.
    ResultCode Start();

    // False before Start, after a Start that failed, and once the thread has ended.
    bool IsRunning() const;

    // What is known of a failed upload; null after any other end. Once it no longer runs.
    const UploadAnswer* GetFailure() const { return m_hasFailed ? &m_answer : nullptr; }

    const std::string& GetFolder() const { return m_folder; }

    // For its uploader, which tries again: an upload makes one attempt.
    static constexpr uint32_t MaxAttempts = 10;
    uint32_t GetTimeBetweenRetries() const { return m_timeBetweenRetriesMs; }

protected:
    // Any number of times; returns at once if no thread was started.
    void WaitForEnd() const;

private:
    void ThreadMain();
    ResultCode UploadFolder();
    void WriteReceipt(uint64_t size, double seconds) const;
    void DeleteFolder() const;

    // All but the last three are constant after construction.
    const UploadPermission m_permission; // as it was when the upload was made
    const std::string m_folder;
    const std::string m_submissionFileName;
    const std::string m_receiptFile; // full path; empty for none
    const uint32_t m_timeBetweenRetriesMs;
    const std::string m_threadName;
    const std::shared_ptr<Thread> m_thread;
    bool m_started = false;  // a thread that was never resumed reports that it runs
    bool m_hasFailed = true; // until the upload's thread knows better
    UploadAnswer m_answer;   // of that thread too
};
