#include <windows.h>

#include "Libs/Processes/Core/tests/WatchedGame.h"

// Stands for a game that runs: waits until it is told to quit, and not for ever.
int main() {
    HANDLE quit = OpenEventW(SYNCHRONIZE, FALSE, WatchedGameQuitEvent);
    return quit && WaitForSingleObject(quit, 30000) == WAIT_OBJECT_0 ? 0 : 1;
}
