#include "Libs/Processes/Core/src/UploadReceipts.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <mutex>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"

Reflection_DefineType(UploadReceipt, Reflection_Field(time, "Time"),
                      Reflection_Field(submission, "Submission"), Reflection_Field(key, "Key"),
                      Reflection_Field(size, "Size"), Reflection_Field(seconds, "Seconds"));

namespace UploadReceipts {

namespace {

std::string TimeOfNow() {
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss time(now - day);
    char text[64];
    std::snprintf(text, sizeof(text), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text;
}

// The end of an open file.
ResultCode ReadEnd(Platform::File& file, std::string& end) {
    const uint64_t size = std::min(file.GetSize(), MostBytes);
    std::vector<uint8_t> bytes(static_cast<std::size_t>(size));
    std::size_t count = 0;
    if (file.Read(file.GetSize() - size, bytes, count) != Platform::NoError) {
        return "Failed to read the receipts";
    }
    end.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
    return Platform::Success;
}

std::string_view LastLines(std::string_view text) {
    std::size_t start = text.size();
    for (std::size_t lines = 0; lines < MostLines && start > 0; ++lines) {
        const std::size_t end = start < 2 ? std::string_view::npos : text.rfind('\n', start - 2);
        start = end == std::string_view::npos ? 0 : end + 1;
    }
    return text.substr(start);
}

// Written beside it, so that a kill leaves the old file or the new one.
ResultCode ReplaceBy(const std::string& path, std::string_view text) {
    const std::string beside = path + ".new";
    Platform::File file;
    if (file.Open(beside, Platform::FileWrite | Platform::FileCreateAndTruncate) == Platform::NoError &&
        file.Write(0, Platform::BytesOf(text)) == Platform::NoError && file.Flush() == Platform::NoError &&
        file.Close() && Platform::RenameFile(beside, path) == Platform::NoError) {
        return Platform::Success;
    }
    file = {};
    static_cast<void>(Platform::RemoveFile(beside)); // the next receipt tries again
    return "Failed to shorten the file";
}

ResultCode AddLine(const std::string& path, const std::string& line) {
    Platform::File file;
    if (Platform::OpenOrCreate(file, path, Platform::FileRead | Platform::FileWrite,
                               Platform::Patience::WhileHeld) != Platform::NoError) {
        return "Failed to open the file";
    }
    std::string end;
    RETURN_IF_FAILED(ReadEnd(file, end));
    const std::string added = (end.empty() || end.ends_with('\n') ? "" : "\n") + line + "\n";
    const uint64_t size = file.GetSize() + added.size();
    if (file.Write(file.GetSize(), Platform::BytesOf(added)) != Platform::NoError ||
        file.Flush() != Platform::NoError) {
        return "Failed to write the line";
    }
    file = {};
    end += added;
    const std::string_view kept = LastLines(end);
    return kept.size() == size ? Platform::Success : ReplaceBy(path, kept);
}

} // namespace

ResultCode Add(const std::string& path, UploadReceipt receipt) {
    receipt.time = TimeOfNow();
    receipt.seconds = std::round(receipt.seconds * 1000) / 1000;
    JsonDocument document;
    std::string line;
    RETURN_IF_FAILED(JsonSerialization::WriteRecord(receipt, document));
    RETURN_IF_FAILED(JsonSerialization::WriteText(document, line));
    static std::mutex lock; // of all uploaders and their threads
    const std::lock_guard guard(lock);
    return AddLine(path, line);
}

Content Read(std::string_view text) {
    Content content;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        JsonDocument document;
        UploadReceipt receipt;
        if (JsonSerialization::ParseText(line, document) &&
            JsonSerialization::ReadRecord(document, receipt)) {
            content.receipts.push_back(std::move(receipt));
        } else {
            ++content.damagedLines;
        }
    }
    return content;
}

} // namespace UploadReceipts
