#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/Reflected.h"
#include "Libs/Processes/Core/src/IWatcher.h"
#include "Libs/Processes/Core/src/UploaderThreadBase.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// The process at the end of the pipeline: takes the packaged folders that its watcher found and runs at most
// four uploads at once, the latest folder first. Asks the player at most once a run, before the first of
// them. What a store is, the concrete uploader knows. Both lists belong to the process's own thread, which
// returns only after the last upload has ended.
//
// The road of one folder: taken from the watcher (Collect), pending, started as an upload (StartUploads),
// active, and dropped from the list after its thread has ended (ReapUploads). Pending folders stay on disk at
// shutdown.
class UploaderBase : public Reflected<UploaderBase> {
public:
    using Reflected::Reflected;

    bool ThreadMain() final;

    // Makes the upload of one folder, hands it to AddActiveUpload and starts it. On the uploader's thread.
    virtual void StartUploadThread(const std::string& folder, UploadPermission permission) = 0;

    // The pause between two passes of the run loop, in milliseconds. Constant after Initialize.
    virtual uint32_t GetTimeBetweenChecks() const = 0;

    // Part of Initialize: whether the player is asked before anything is sent. Without it nobody is asked.
    void SetAskPermission(bool ask);

protected:
    // Part of Initialize. The process must offer IWatcher.
    void SetWatcher(std::shared_ptr<IApplicationProcess> watcher) { m_watcherProcPtr = std::move(watcher); }

    // Keeps an upload until its thread has ended; one that could not be started goes in the next pass.
    void AddActiveUpload(std::shared_ptr<UploaderThreadBase> upload);

private:
    void Collect(IWatcher& watcher);
    void AskPermission();
    void StartUploads();
    void ReapUploads();
    void WaitForUploads();
    void AssertOnUploaderThread();

    const uint32_t m_maxActiveUploads = 4;
    std::vector<std::string> m_pendingFolders;                        // taken from the back
    std::vector<std::shared_ptr<UploaderThreadBase>> m_activeUploads; // in the order started
    std::shared_ptr<IApplicationProcess> m_watcherProcPtr;            // constant after Initialize
    bool m_askPermission = false;
    UploadPermission m_permission = UploadPermission::Allowed; // an answer is never taken back
};
Reflection_DeclarePolymorphicType(UploaderBase);
