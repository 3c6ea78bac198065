#pragma once

#include <cstdint>
#include <string>

// What an upload learned of its package and of the store, beside its result.
struct UploadAnswer {
    std::string key;                // the object's, by which a player names the report; empty if unknown
    uint32_t httpStatus = 0;        // 0: no answer
    uint32_t retryAfterSeconds = 0; // as the store asked to be left alone; 0: it did not ask
};
