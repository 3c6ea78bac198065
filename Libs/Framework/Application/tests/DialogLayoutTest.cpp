#include "Libs/Framework/Application/src/DialogLayout.h"

#include <gtest/gtest.h>

using DialogLayout::Box;
using DialogLayout::Layout;

TEST(DialogLayout, TextsGetTheRoomTheyNeed) {
    constexpr Layout Template = {300, 120, {7, 7, 286, 80}, {190, 100, 50, 14}, {243, 100, 50, 14}};
    const struct {
        const char* what;
        int messageHeight;
        int buttonWidth;
        Layout fitted;
    } rows[] = {
        {"all fit", 80, 50, Template},
        {"long message", 95, 0, {300, 135, {7, 7, 286, 95}, {190, 115, 50, 14}, {243, 115, 50, 14}}},
        {"wide buttons", 0, 60, {300, 120, {7, 7, 286, 80}, {170, 100, 60, 14}, {233, 100, 60, 14}}},
        {"very wide", 80, 150, {317, 120, {7, 7, 303, 80}, {7, 100, 150, 14}, {160, 100, 150, 14}}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DialogLayout::Fit(Template, row.messageHeight, row.buttonWidth), row.fitted) << row.what;
    }
}

TEST(DialogLayout, CentresWithinTheArea) {
    EXPECT_EQ(DialogLayout::Centre({-1920, 40, 1920, 1000}, 300, 200), (Box{-1110, 440, 300, 200}));
    EXPECT_EQ(DialogLayout::Centre({100, 50, 200, 100}, 300, 200), (Box{100, 50, 300, 200})) << "too large";
}
