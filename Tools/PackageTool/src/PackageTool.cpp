#include "Tools/PackageTool/src/PackageTool.h"

#include <array>
#include <cstdio>
#include <exception>

#include "Tools/PackageTool/src/Commands.h"

namespace {

constexpr char Usage[] =
    R"(Looks into the packages of the crash reporter, makes them, and checks its configuration.

usage: PackageTool list FILE... [--json] [--limit SIZE]
       PackageTool verify FILE... [--json] [--limit SIZE]
       PackageTool unpack FILE... --to FOLDER [--force] [--stored] [--json] [--limit SIZE]
       PackageTool pack FOLDER... --to FOLDER [--force] [--config FILE [--packager NAME]]
       PackageTool check-config FILE... [--json]
       PackageTool config-schema

list           what a package holds: the header's main fields and a row for each file
verify         every length and digest, the header's catalog and each gzip stream
unpack         header and files into FOLDER; of several packages each into a folder of its own there
pack           a package from a submission folder, as the packager writes it: FOLDER/NAME/submission.pkg
check-config   every problem of a configuration with its line and column
config-schema  the configuration's JSON schema, for editors

FILE           "-" is standard input
--config FILE  pack with the limits, black list and source of the packager NAME ("Packager") there
--force        replace what is there already
--json         one JSON object on standard output
--limit SIZE   the most that one package may unpack to, such as 500M (4G)
--stored       unpack the files as the package stores them, NAME.gz
--to FOLDER    made when it is missing
--help, --version

exit code: 0 good, 1 problems in a package or configuration, 2 wrong usage, 3 something could not be read or written
)";

constexpr struct {
    const char* name;
    ExitCode (*run)(const Arguments& arguments);
} Commands[] = {
    {"list", &RunList},
    {"verify", &RunVerify},
    {"unpack", &RunUnpack},
    {"pack", &RunPack},
    {"check-config", &RunCheckConfig},
    {"config-schema", &RunConfigSchema},
};

ExitCode Run(const Arguments& arguments) {
    if (arguments.help) {
        Console::Print(Usage);
        return ExitCode::Good;
    }
    if (arguments.version) {
        Console::Print("PackageTool " MORVANE_VERSION "\n");
        return ExitCode::Good;
    }
    for (const auto& command : Commands) {
        if (arguments.command == command.name) {
            return command.run(arguments);
        }
    }
    return ExitCode::WrongUsage; // parsing has refused it before
}

} // namespace

int RunPackageTool(const std::vector<std::string>& words) {
    Console::Prepare();
    ExitCode code = ExitCode::Good;
    try {
        Arguments arguments;
        std::string error;
        if (!ParseArguments(words, arguments, error)) {
            Console::PrintError(error + " (--help tells more)");
            return static_cast<int>(ExitCode::WrongUsage);
        }
        code = Run(arguments);
    } catch (const std::exception& failure) {
        Console::PrintError(failure.what());
        Raise(code, ExitCode::NotReadOrWritten);
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        Console::PrintError("Failed to write to standard output");
        Raise(code, ExitCode::NotReadOrWritten);
    }
    return static_cast<int>(code);
}
