#include "Libs/Processes/Core/src/IWatcher.h"

Reflection_DefinePolymorphicType(IFileStoreWatcher);
Reflection_DefinePolymorphicType(ITaskSubscriber);
Reflection_DefinePolymorphicType(IWatcher);
