#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// How the tool ends; of several that apply the highest.
enum class ExitCode : int {
    Good = 0,
    ProblemsFound = 1,   // in a package or in a configuration
    WrongUsage = 2,      // nothing was done
    NotReadOrWritten = 3 // a file or folder refused
};
void Raise(ExitCode& code, ExitCode other);

// Standard input, output and error, all in UTF-8 and without any conversion of line ends.
namespace Console {

// Once, at the start. Also sends failures that modules log to standard error.
void Prepare();

void Print(std::string_view text);

// One line: the program's name, then text, made printable.
void PrintError(std::string_view text);
void PrintError(const std::string& file, const std::string& text); // file: text

bool IsErrorTerminal();
void PrintProgress(std::string_view text); // to standard error, as it is

// False when reading failed or nothing was there to read; then reason says why.
bool ReadInput(const std::string& file, std::vector<uint8_t>& bytes, std::string& reason);

// For text that others wrote: a terminal obeys control characters, line ends and marks of writing direction,
// which can show a name as another. Each becomes "?".
std::string Printable(std::string_view text);

} // namespace Console
