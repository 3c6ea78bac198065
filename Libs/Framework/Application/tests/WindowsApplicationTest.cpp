#include "Libs/Framework/Application/src/WindowsApplication.h"

#include <gtest/gtest.h>

#include "tests/support/LogCapture.h"

namespace {

TEST(WindowsApplication, PassesWholeLinesOnWhileItLives) {
    const struct {
        std::string text;
        std::string lines;
    } rows[] = {
        {"a", "a\r\n"},         {"a\n", "a\r\n"},       {"a\r\n", "a\r\n"},
        {"a\nb", "a\r\nb\r\n"}, {"\nabc", "\nabc\r\n"}, {"\n\nabc", "\n\r\nabc\r\n"},
    };
    for (const auto& row : rows) {
        const TestSupport::LogCapture log;
        const auto write = [&text = row.text] {
            Platform::LogWrite(Platform::InfoLog, text.c_str(), static_cast<uint32_t>(text.size()));
        };
        {
            const auto application = std::make_shared<WindowsApplication>(0, nullptr);
            write();
        }
        write();
        EXPECT_EQ(log.Infos(), (std::vector<std::string>{row.lines, row.text}));
    }
}

} // namespace
