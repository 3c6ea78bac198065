#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/Reflected.h"
#include "Libs/Processes/Core/src/IWatcher.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Processes/Core/src/UploadRetries.h"
#include "Libs/Processes/Core/src/UploaderThreadBase.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The process at the end of the pipeline: takes the packaged folders that its watcher found and runs at most
// four uploads at once, the latest folder first. Asks the player at most once a run, before the first of
// them. The concrete uploader knows the store. The lists belong to the process's own thread, which returns
// after the last upload has ended.
//
// A folder is found (Collect), pending, active (StartUploads), and dropped when its upload's thread has ended
// (ReapUploads), or pending again after a failure if RetryFailedUploads says so. Pending folders stay on disk
// at shutdown.
class UploaderBase : public Reflected<UploaderBase> {
public:
    using Reflected::Reflected;

    bool ThreadMain() final;

    // Makes the upload of one folder, hands it to AddActiveUpload and starts it. On the uploader's thread.
    // After an exception, which must come before the start, the folder stays pending.
    virtual void StartUploadThread(const std::string& folder, UploadPermission permission) = 0;

    // The pause before each round, in milliseconds. Constant after Initialize.
    virtual uint32_t GetTimeBetweenChecks() const = 0;

    // Part of Initialize: whether the player is asked before anything is sent. Without it nobody is asked.
    void SetAskPermission(bool ask);

protected:
    // What all uploaders do with their section once it is read: completes it and finds the watcher. Part of
    // Initialize.
    ResultCode InitializeFrom(UploaderConfig& config);

    // Keeps an upload until its thread has ended; one that could not be started is dropped in the next round.
    void AddActiveUpload(std::shared_ptr<UploaderThreadBase> upload);

    // For StartUploadThread: adds and starts it. A failure to start is logged.
    void AddAndStart(const std::shared_ptr<UploaderThreadBase>& upload);

private:
    void Collect(IWatcher& watcher);
    UploadPermission AskPermission();
    void StartUploads();
    void ReapUploads();
    void Drop(const UploadRetries::Package& package);
    bool IsTriedAgain(UploadRetries::Package& package, const UploaderThreadBase& upload);
    void WaitForUploads();
    void AssertOnUploaderThread();

    const uint32_t m_maxActiveUploads = 4;
    std::vector<TaskData> m_found;                  // taken from the watcher
    std::vector<UploadRetries::Package> m_packages; // pending and active, in the order found
    std::vector<std::shared_ptr<UploaderThreadBase>> m_activeUploads; // in the order started
    std::shared_ptr<IApplicationProcess> m_watcherProcPtr;            // constant after Initialize
    bool m_askPermission = false;
    bool m_retryFailedUploads = false;
    std::minstd_rand m_random;                                 // for the pauses
    UploadPermission m_permission = UploadPermission::Allowed; // an answer is final
};
Reflection_DeclarePolymorphicType(UploaderBase);
