#include "Tools/PackageTool/src/Arguments.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace {

struct CommandRule {
    std::string_view name;
    bool takesFiles;
    std::string_view options; // each with a blank after it
};

constexpr std::array Commands = {
    CommandRule{"list", true, "--json --ndjson --limit "},
    CommandRule{"verify", true, "--json --limit "},
    CommandRule{"unpack", true, "--json --limit --to --force --stored "},
    CommandRule{"pack", true, "--to --force --config --packager "},
    CommandRule{"check-dump", true, "--config --packager "},
    CommandRule{"check-config", true, "--json --connect "},
    CommandRule{"config-schema", false, ""},
    CommandRule{"receipts", true, "--json "},
};

// Takes the words one by one.
class Parser {
public:
    Parser(const std::vector<std::string>& words, Arguments& arguments, std::string& error)
        : m_words(words), m_arguments(arguments), m_error(error) {}

    bool Run() {
        while (m_next < m_words.size()) {
            const std::string& word = m_words[m_next++];
            const bool isOption = !m_onlyFiles && word.size() > 1 && word[0] == '-';
            if (isOption ? !TakeOption(word) : !TakeWord(word)) {
                return false;
            }
        }
        return m_arguments.help || m_arguments.version || Check();
    }

private:
    bool TakeWord(const std::string& word) {
        if (m_arguments.command.empty() && !m_onlyFiles) {
            m_arguments.command = word;
        } else {
            m_arguments.files.push_back(word);
        }
        return true;
    }

    bool TakeOption(const std::string& word) {
        if (word == "--") {
            m_onlyFiles = true;
            return true;
        }
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        for (const auto& [flag, place] : {std::pair{"--json", &m_arguments.json},
                                          {"--ndjson", &m_arguments.ndjson},
                                          {"--force", &m_arguments.force},
                                          {"--stored", &m_arguments.stored},
                                          {"--connect", &m_arguments.connect},
                                          {"--help", &m_arguments.help},
                                          {"-h", &m_arguments.help},
                                          {"--version", &m_arguments.version}}) {
            if (name == flag) {
                *place = true;
                m_seen.push_back(name);
                return equals == std::string::npos || Fail(name + " takes no value");
            }
        }
        return TakeValueOption(name, word, equals);
    }

    bool TakeValueOption(const std::string& name, const std::string& word, std::size_t equals) {
        std::string limit;
        for (const auto& [option, place] : {std::pair{"--to", &m_arguments.to},
                                            {"--config", &m_arguments.config},
                                            {"--packager", &m_arguments.packager},
                                            {"--limit", &limit}}) {
            if (name != option) {
                continue;
            }
            m_seen.push_back(name);
            if (equals == std::string::npos && m_next == m_words.size()) {
                return Fail(name + " needs a value");
            }
            *place = equals == std::string::npos ? m_words[m_next++] : word.substr(equals + 1);
            if (place->empty()) {
                return Fail(name + " needs a value");
            }
            return place != &limit || ParseSize(limit, m_arguments.limit) ||
                   Fail("\"" + limit + "\" is not a size: give bytes, or a number with K, M or G");
        }
        return Fail("unknown option " + name);
    }

    bool Check() {
        const auto* const rule =
            std::find_if(Commands.begin(), Commands.end(),
                         [&](const CommandRule& known) { return known.name == m_arguments.command; });
        if (rule == Commands.end()) {
            return Fail(m_arguments.command.empty() ? "no command given"
                                                    : "unknown command " + m_arguments.command);
        }
        for (const std::string& name : m_seen) {
            if (rule->options.find(name + " ") == std::string_view::npos) {
                return Fail(m_arguments.command + " has no option " + name);
            }
        }
        if (rule->takesFiles == m_arguments.files.empty()) {
            return Fail(m_arguments.command + (rule->takesFiles ? " needs a file" : " takes no files"));
        }
        if (std::count(m_arguments.files.begin(), m_arguments.files.end(), "-") > 1) {
            return Fail("standard input can be read only once");
        }
        if (m_arguments.json && m_arguments.ndjson) {
            return Fail("--json is one object for all, --ndjson a line for each: give one of them");
        }
        if (m_arguments.json && m_arguments.connect) {
            return Fail("--connect prints lines for people, no --json");
        }
        if (!m_arguments.packager.empty() && m_arguments.config.empty()) {
            return Fail("--packager names a section of a configuration: it needs --config FILE");
        }
        const bool needsTarget = m_arguments.command == "unpack" || m_arguments.command == "pack";
        if (needsTarget && m_arguments.to.empty()) {
            return Fail(m_arguments.command + " needs --to FOLDER");
        }
        return true;
    }

    bool Fail(std::string error) {
        m_error = std::move(error);
        return false;
    }

    const std::vector<std::string>& m_words;
    Arguments& m_arguments;
    std::string& m_error;
    std::size_t m_next = 0;
    bool m_onlyFiles = false;
    std::vector<std::string> m_seen;
};

} // namespace

bool ParseArguments(const std::vector<std::string>& words, Arguments& arguments, std::string& error) {
    arguments = {};
    error.clear();
    return Parser(words, arguments, error).Run();
}

bool ParseSize(const std::string& text, uint64_t& size) {
    const std::string_view units = "KMG";
    const std::size_t unit = text.empty() ? std::string_view::npos : units.find(text.back());
    const std::size_t digits = text.size() - (unit != std::string_view::npos ? 1 : 0);
    const unsigned shift = unit != std::string_view::npos ? 10 * (static_cast<unsigned>(unit) + 1) : 0;
    uint64_t value = 0;
    for (std::size_t i = 0; i < digits; ++i) {
        const auto digit = static_cast<uint64_t>(text[i] - '0');
        if (text[i] < '0' || text[i] > '9' ||
            value > ((std::numeric_limits<uint64_t>::max() >> shift) - digit) / 10) {
            return false;
        }
        value = value * 10 + digit;
    }
    size = value << shift;
    return digits > 0;
}
