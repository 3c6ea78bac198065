#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

// Only in builds with MORVANE_ASSERT_DIALOGS: whoever runs the agent is asked about failed checks.
namespace {

struct AssertDialogs {
    AssertDialogs() { EXP_GetAssertState()->showDialogs = 1; }
};

const AssertDialogs g_assertDialogs;

} // namespace
