#include "Libs/Processes/Core/src/AttachmentName.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_view_literals;

TEST(AttachmentName, PlainRelativePathsAreSafe) {
    for (const std::string_view name :
         {"a"sv, "game.log"sv, ".hidden"sv, "logs/dxdiag.txt"sv, R"(logs\deep/er\a.txt)"sv, "太郎/ログ.txt"sv,
          "two words.txt"sv, "a..b"sv, "..a"sv, "CONSOLE.txt"sv, "com.txt"sv, "com0"sv, "com10.txt"sv,
          "LPT"sv, "nul_.txt"sv, "xcon"sv, "header.json"sv, "~a$;=+,[]{}'&^%#@!.txt"sv}) {
        EXPECT_TRUE(IsSafeAttachmentName(name)) << name;
    }
}

TEST(AttachmentName, HostileNamesAreRefused) {
    const std::initializer_list<std::string_view> kinds[] = {
        // that lead elsewhere
        {""sv, "/etc/passwd"sv, R"(\windows\win.ini)"sv, R"(\\server\share\a)"sv, "//server/share/a"sv,
         R"(\\?\C:\a)"sv, R"(\\.\PhysicalDrive0)"sv, R"(C:\a.txt)"sv, "c:a.txt"sv, "a.txt:stream"sv,
         "a.txt::$DATA"sv, ".."sv, "../a"sv, R"(..\a)"sv, "a/../b"sv, "a/.."sv},
        // that name a file in a second way
        {"."sv, "./a"sv, "a/./b"sv, "..."sv, ".. /a"sv, "a//b"sv, R"(a\/b)"sv, "a/"sv, "a."sv, "a "sv,
         "a./b"sv, "a /b"sv},
        // wildcards and control characters
        {"*"sv, "a?.txt"sv, "a|b"sv, "a<b"sv, "a>b"sv, R"("a")"sv, "a\nb"sv, "a\tb"sv, "a\0.txt"sv,
         "a.txt\0"sv, "\x1f"sv},
        // devices, in every spelling
        {"CON"sv, "con"sv, "Prn"sv, "AUX"sv, "NUL"sv, "nul.txt"sv, "nul.tar.gz"sv, "NUL .txt"sv, "COM1"sv,
         "com9.log"sv, "LPT1"sv, "lpt5.x"sv, "COM\xC2\xB9"sv, "com\xC2\xB2.txt"sv, "LPT\xC2\xB3"sv,
         "CONIN$"sv, "conout$.txt"sv, "logs/NUL"sv, "aux/a.txt"sv},
    };
    for (const auto& names : kinds) {
        for (const std::string_view name : names) {
            EXPECT_FALSE(IsSafeAttachmentName(name)) << name;
        }
    }
}
