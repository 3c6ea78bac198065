#include "Tools/PackageTool/src/Receipts.h"

#include "Libs/Processes/Core/src/UploadReceipts.h"

// The records of --json.
struct ReportedReceiptFile {
    std::string file;
    std::vector<UploadReceipt> receipts;
    uint64_t damagedLines = 0;
};
struct ReportedReceipts {
    std::vector<ReportedReceiptFile> files;
};
Reflection_DeclareType(ReportedReceiptFile);
Reflection_DeclareType(ReportedReceipts);
Reflection_DefineType(ReportedReceiptFile, Reflection_Field(file, "File"),
                      Reflection_Field(receipts, "Receipts"), Reflection_Field(damagedLines, "DamagedLines"));
Reflection_DefineType(ReportedReceipts, Reflection_Field(files, "Files"));

namespace {

using Console::Count;

// The newest last, as in the file.
std::string Lines(const ReportedReceiptFile& file) {
    std::string text = Console::Printable(file.file) + ": " + Count(file.receipts.size(), "receipt") +
                       (file.damagedLines > 0 ? ", " + Count(file.damagedLines, "damaged line") : "") + "\n";
    for (const UploadReceipt& receipt : file.receipts) {
        text += "  " +
                Console::Printable(receipt.time + "  " + receipt.key + "  " + Count(receipt.size, "byte") +
                                   "  " + receipt.submission) +
                "\n";
    }
    return text;
}

} // namespace

ExitCode RunReceipts(const Arguments& arguments) {
    ReportedReceipts report;
    ExitCode code = ExitCode::Good;
    for (const std::string& file : arguments.files) {
        std::vector<uint8_t> bytes;
        if (!Console::ReadInput(file, bytes)) {
            Raise(code, ExitCode::NotReadOrWritten);
            continue;
        }
        auto [receipts, damagedLines] = UploadReceipts::Read(Platform::TextOf(bytes));
        report.files.push_back({file, std::move(receipts), damagedLines});
        if (!arguments.json) {
            Console::Print(Lines(report.files.back()));
        }
    }
    if (arguments.json) {
        Console::PrintJson(report);
    }
    return code;
}
