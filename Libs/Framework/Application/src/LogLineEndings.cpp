#include "Libs/Framework/Application/src/LogLineEndings.h"

std::string WithWindowsLineEndings(std::string_view text) {
    std::string lines;
    lines.reserve(text.size() + 2); // an entry rarely has line feeds of its own
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && i > 0 && text[i - 1] != '\r') {
            lines += '\r';
        }
        lines += text[i];
    }
    if (!lines.empty() && lines.back() != '\n') {
        lines += "\r\n";
    }
    return lines;
}
