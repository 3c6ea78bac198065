#pragma once

// Where a dialog of one message over two buttons puts them if its texts need more room than the template
// gives. Pure; all lengths in pixels.
namespace DialogLayout {

struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const Box&) const = default;
};

// Positions inside the client area; the buttons are at its lower right, `left` before `right`.
struct Layout {
    int width = 0; // of the client area
    int height = 0;
    Box message;
    Box left;
    Box right;
    bool operator==(const Layout&) const = default;
};

// The layout with room for a message of that height and for buttons of that width. Distances stay the same,
// and nothing gets smaller than in the template.
Layout Fit(const Layout& layout, int messageHeight, int buttonWidth);

// A box of this size in the middle of an area; one that is too large begins at the area's upper left, where
// its caption can be reached.
Box Centre(const Box& area, int width, int height);

} // namespace DialogLayout
