#pragma once

// Lets the compiler check a printf-like function's arguments. The dialect is the C standard's on Windows too,
// so "%zu" and "%llu" are right everywhere.
#if defined(__clang__)
#define PLATFORM_PRINTF(formatIndex, firstArgument) \
    __attribute__((format(printf, formatIndex, firstArgument)))
#elif defined(__GNUC__)
#define PLATFORM_PRINTF(formatIndex, firstArgument) \
    __attribute__((format(gnu_printf, formatIndex, firstArgument)))
#else
#define PLATFORM_PRINTF(formatIndex, firstArgument)
#endif
