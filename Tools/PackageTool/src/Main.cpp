#include <cstdio>
#include <exception>
#include <span>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"
#include "Tools/PackageTool/src/Arguments.h"
#include "Tools/PackageTool/src/ConfigCheck.h"
#include "Tools/PackageTool/src/Console.h"
#include "Tools/PackageTool/src/Pack.h"
#include "Tools/PackageTool/src/Receipts.h"
#include "Tools/PackageTool/src/Report.h"
#include "Tools/PackageTool/src/Unpack.h"

namespace {

constexpr char Usage[] =
    R"(Looks into the packages of the crash reporter, makes them, and checks its configuration.

usage: PackageTool list FILE... [--json | --ndjson] [--limit SIZE]
       PackageTool verify FILE... [--json] [--limit SIZE]
       PackageTool unpack FILE... --to FOLDER [--force] [--stored] [--json] [--limit SIZE]
       PackageTool pack FOLDER... --to FOLDER [--force] [--config FILE [--packager NAME]]
       PackageTool check-dump FOLDER... [--config FILE [--packager NAME]]
       PackageTool check-config FILE... [--json] [--connect]
       PackageTool config-schema
       PackageTool receipts FILE... [--json]

list           what a package holds: its MD5, the header's main fields, the call stack and a row for each file
verify         every length and digest, the header's catalog and each gzip stream
unpack         header and files into FOLDER; each of several packages into its own folder there
pack           a package from a submission folder, as the packager writes it: FOLDER/NAME/submission.pkg
check-dump     what keeps the agent from taking a submission folder, and what of it would not arrive
check-config   every problem of a configuration with its line and column, and what is hardly meant as warnings
config-schema  the configuration's JSON schema, for editors
receipts       what an agent says it has sent: the lines of its ReceiptFile

FILE           "-" is standard input; for list and verify also a folder, for all files in it and below
--connect      then store one tiny object with each uploader's settings and say which answer came
--config FILE  work with the limits, blacklist and source of the packager NAME ("Packager") there
--force        replace existing files, each once the new one is complete
--json         one JSON object on standard output
--ndjson       one line of JSON for each whole package, for an engine to read
--limit SIZE   the most that one package may unpack to, such as 500M (4G)
--stored       unpack the files as the package stores them, NAME.gz
--to FOLDER    created if it is missing
--help, --version

exit code: 0 good, 1 problems in a package, folder or configuration, 2 wrong usage, 3 something could not be read or written,
4 nothing but warnings
)";

// May throw std::bad_alloc.
ExitCode Run(const Arguments& arguments) {
    if (arguments.help) {
        Console::Print(Usage);
        return ExitCode::Good;
    }
    if (arguments.version) {
        Console::Print("PackageTool " MORVANE_VERSION "\n");
        return ExitCode::Good;
    }
    static constexpr struct {
        const char* name;
        ExitCode (*run)(const Arguments& arguments);
    } commands[] = {
        {"list", &RunList},
        {"verify", &RunVerify},
        {"unpack", &RunUnpack},
        {"pack", &RunPack},
        {"check-dump", &RunCheckDump},
        {"check-config", &RunCheckConfig},
        {"config-schema", &RunConfigSchema},
        {"receipts", &RunReceipts},
    };
    for (const auto& command : commands) {
        if (arguments.command == command.name) {
            return command.run(arguments);
        }
    }
    return ExitCode::WrongUsage; // not reached: parsing refuses other commands
}

ExitCode ParseAndRun(std::span<const Platform::SystemText::value_type* const> given) {
    try {
        std::vector<std::string> words(given.size());
        for (std::size_t i = 0; i < given.size(); ++i) {
            if (Platform::ToUtf8(given[i], words[i]) != Platform::NoError) {
                Console::PrintError("an argument is not Unicode text");
                return ExitCode::WrongUsage;
            }
        }
        Arguments arguments;
        std::string error;
        if (!ParseArguments(words, arguments, error)) {
            Console::PrintError(error + " (--help says more)");
            return ExitCode::WrongUsage;
        }
        return Run(arguments);
    } catch (const std::exception& failure) {
        Console::PrintError(failure.what());
        return ExitCode::NotReadOrWritten;
    }
}

} // namespace

// main, or wmain where narrow arguments can't hold every name.
int PACKAGE_TOOL_MAIN(int argc, Platform::SystemText::value_type** argv) {
    const Console::Session session;
    ExitCode code = ParseAndRun({argv + (argc > 0 ? 1 : 0), argv + argc});
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        Console::PrintError("Failed to write to standard output");
        Raise(code, ExitCode::NotReadOrWritten);
    }
    return static_cast<int>(code);
}
