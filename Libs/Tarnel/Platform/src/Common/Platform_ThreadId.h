#pragma once

#include <cstdint>

// The id of the main thread: the thread that made the first call. Any thread may call it afterwards.
uint32_t GetMainThreadId();

uint32_t GetCurrentThreadIdImpl();
