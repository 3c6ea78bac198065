#pragma once

#include <exception>
#include <new>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Calls function, which returns a ResultCode, and turns an exception that escapes it into a failure. For
// calls of code that others wrote.
template <class Function>
ResultCode ExceptionToResult(Function&& function) {
    try {
        return function();
    } catch (const std::bad_alloc&) {
        return "Out of memory";
    } catch (const std::exception& error) {
        PLATFORM_LOG(Platform::ErrorLog, " Unexpected exception: %s", error.what());
    } catch (...) {
        PLATFORM_LOG(Platform::ErrorLog, " Unexpected exception: %s", "of unknown type");
    }
    return "Unexpected exception";
}
