#pragma once

#include <string>

#include "Tools/SampleGame/src/Options.h"

struct _EXCEPTION_POINTERS; // NOLINT(bugprone-reserved-identifier): the system's own

namespace SampleGame {

// Writes the submission folder of one crash: minidump, log, attachments, then header.json, which is made
// read-only when everything is in place. A failure on the way leaves the folder without that mark, so nobody
// takes it. Returns an empty text, or what failed. logText is the game's log; terminateMessage replaces the
// crash's own message when the program was terminated by a C++ exception.
std::string WriteSubmission(const _EXCEPTION_POINTERS& exception, const Options& options,
                            const std::string& logText, const std::string& terminateMessage);

// The content of the attachment with this number (from 1): lines that name it, cut at size bytes.
std::string AttachmentContent(uint32_t number, uint64_t size);

} // namespace SampleGame
