#pragma once

#include <memory>

#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"

// A store without a key: for each object the signer is asked for an address that takes just that object, and
// the object is put there. Over the system's HTTP in every build. Says in the log which step failed, without
// addresses and headers. Needs no InitializeObjectStores. Never null; a configuration that can't be used
// fails in PutObject. Any thread. May throw std::bad_alloc.
std::unique_ptr<IObjectStore> CreatePresignedObjectStore(const UploaderPresignedConfig& config);
