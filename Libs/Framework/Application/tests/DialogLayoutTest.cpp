#include "Libs/Framework/Application/src/DialogLayout.h"

#include <gtest/gtest.h>

using DialogLayout::Box;
using DialogLayout::Layout;

namespace {

constexpr Layout Template = {300, 120, {7, 7, 286, 80}, {190, 100, 50, 14}, {243, 100, 50, 14}};

TEST(DialogLayout, TextsThatFitChangeNothing) {
    EXPECT_EQ(DialogLayout::Fit(Template, 80, 50), Template);
    EXPECT_EQ(DialogLayout::Fit(Template, 0, 0), Template);
}

TEST(DialogLayout, ALongMessagePushesTheButtonsDown) {
    EXPECT_EQ(DialogLayout::Fit(Template, 95, 50),
              (Layout{300, 135, {7, 7, 286, 95}, {190, 115, 50, 14}, {243, 115, 50, 14}}));
}

TEST(DialogLayout, WideButtonsGrowToTheLeft) {
    EXPECT_EQ(DialogLayout::Fit(Template, 80, 60),
              (Layout{300, 120, {7, 7, 286, 80}, {170, 100, 60, 14}, {233, 100, 60, 14}}));
}

TEST(DialogLayout, VeryWideButtonsWidenTheDialog) {
    EXPECT_EQ(DialogLayout::Fit(Template, 80, 150),
              (Layout{317, 120, {7, 7, 303, 80}, {7, 100, 150, 14}, {160, 100, 150, 14}}));
}

TEST(DialogLayout, CentresWithinTheArea) {
    EXPECT_EQ(DialogLayout::Centre({0, 0, 1000, 800}, 300, 200), (Box{350, 300, 300, 200}));
    EXPECT_EQ(DialogLayout::Centre({-1920, 40, 1920, 1000}, 300, 200), (Box{-1110, 440, 300, 200}));
    EXPECT_EQ(DialogLayout::Centre({100, 50, 200, 100}, 300, 200), (Box{100, 50, 300, 200}));
}

} // namespace
