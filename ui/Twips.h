#pragma once

#include <QSize>

namespace wr {

// The forms are laid out in twips, 1/1440 inch: 15 twips make one pixel at
// the usual 96 dots per inch, and Qt scales pixels for larger screens.
constexpr int TwipsPerPixel = 15;

constexpr int twipsToPixels(int twips)
{
    return (twips + TwipsPerPixel / 2) / TwipsPerPixel;
}

constexpr QSize twipsToPixels(int width, int height)
{
    return {twipsToPixels(width), twipsToPixels(height)};
}

} // namespace wr
