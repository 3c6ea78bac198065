#include "Libs/Framework/Application/src/DialogLayout.h"

#include <algorithm>

DialogLayout::Layout DialogLayout::Fit(const Layout& layout, int messageHeight, int buttonWidth) {
    Layout fitted = layout;
    const int taller = std::max(0, messageHeight - layout.message.height);
    fitted.height += taller;
    fitted.message.height += taller;
    fitted.left.y += taller;
    fitted.right.y += taller;

    // The right edges stay: the right button grows to the left, and pushes the left one.
    const int wider = std::max(0, buttonWidth - layout.left.width);
    fitted.left.width += wider;
    fitted.right.width += wider;
    fitted.right.x -= wider;
    fitted.left.x -= 2 * wider;

    const int missing = std::max(0, layout.message.x - fitted.left.x);
    fitted.width += missing;
    fitted.message.width += missing;
    fitted.left.x += missing;
    fitted.right.x += missing;
    return fitted;
}

DialogLayout::Box DialogLayout::Centre(const Box& area, int width, int height) {
    return {area.x + std::max(0, (area.width - width) / 2), area.y + std::max(0, (area.height - height) / 2),
            width, height};
}
