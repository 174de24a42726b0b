// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/PictureComparison.h"

#include <algorithm>
#include <cstdlib>

namespace PictureComparison
{
namespace
{
constexpr int numColours = 3;

/** Sum of the differences of one pixel's colours. */
int distance (juce::Colour a, juce::Colour b) noexcept
{
    return std::abs (a.getRed() - b.getRed()) + std::abs (a.getGreen() - b.getGreen())
           + std::abs (a.getBlue() - b.getBlue());
}

double meanOf (juce::int64 sum, int pixels) noexcept
{
    return pixels < fewestPixels ? 0.0 : static_cast<double> (sum) / (numColours * pixels);
}

bool sameSize (const juce::Image& a, const juce::Image& b) noexcept { return a.getBounds() == b.getBounds(); }
} // namespace

std::vector<Tile> tilesOf (const juce::Image& reference, const juce::Image& picture,
                           const std::vector<juce::Rectangle<int>>& systemText)
{
    const juce::Image::BitmapData before (reference, juce::Image::BitmapData::readOnly);
    const juce::Image::BitmapData after (picture, juce::Image::BitmapData::readOnly);
    std::vector<Tile> tiles;

    for (int top = 0; top < reference.getHeight(); top += tileSize)
    {
        for (int left = 0; left < reference.getWidth(); left += tileSize)
        {
            Tile tile;
            tile.area = reference.getBounds().getIntersection ({ left, top, tileSize, tileSize });

            juce::RectangleList<int> text;

            for (const auto& area : systemText)
                text.add (area.getIntersection (tile.area));

            juce::int64 artworkSum = 0, textSum = 0;
            int artworkPixels = 0, textPixels = 0;

            for (int y = tile.area.getY(); y < tile.area.getBottom(); ++y)
            {
                for (int x = tile.area.getX(); x < tile.area.getRight(); ++x)
                {
                    const auto isText = text.containsPoint (x, y);
                    (isText ? textSum : artworkSum) +=
                        distance (before.getPixelColour (x, y), after.getPixelColour (x, y));
                    ++(isText ? textPixels : artworkPixels);
                }
            }

            tile.artwork = meanOf (artworkSum, artworkPixels);
            tile.text = meanOf (textSum, textPixels);
            tiles.push_back (tile);
        }
    }

    return tiles;
}

::testing::AssertionResult alike (const juce::Image& reference, const juce::Image& picture,
                                  const std::vector<juce::Rectangle<int>>& systemText)
{
    if (! reference.isValid() || ! picture.isValid())
        return ::testing::AssertionFailure() << "there is no picture";

    if (! sameSize (reference, picture))
        return ::testing::AssertionFailure() << picture.getWidth() << " x " << picture.getHeight() << " px against "
                                             << reference.getWidth() << " x " << reference.getHeight();

    auto tiles = tilesOf (reference, picture, systemText);
    tiles.erase (std::remove_if (tiles.begin(), tiles.end(), [] (const Tile& tile) { return tile.isAlike(); }),
                 tiles.end());

    if (tiles.empty())
        return ::testing::AssertionSuccess();

    constexpr size_t mostNamed = 10;
    auto result = ::testing::AssertionFailure() << tiles.size() << " tiles differ:";

    for (size_t i = 0; i < std::min (tiles.size(), mostNamed); ++i)
        result << "\n  at " << tiles[i].area.getX() << ", " << tiles[i].area.getY() << " px: artwork "
               << tiles[i].artwork << " levels, text " << tiles[i].text;

    return result;
}

juce::Image difference (const juce::Image& reference, const juce::Image& picture)
{
    constexpr int brightening = 8;
    const auto area = reference.getBounds().getIntersection (picture.getBounds());
    juce::Image result (juce::Image::RGB, std::max (1, area.getWidth()), std::max (1, area.getHeight()), true);

    for (int y = 0; y < area.getHeight(); ++y)
    {
        for (int x = 0; x < area.getWidth(); ++x)
        {
            const auto a = reference.getPixelAt (x, y), b = picture.getPixelAt (x, y);
            const auto bright = [] (int first, int second)
            { return static_cast<juce::uint8> (std::min (255, brightening * std::abs (first - second))); };
            result.setPixelAt (x, y,
                               juce::Colour (bright (a.getRed(), b.getRed()), bright (a.getGreen(), b.getGreen()),
                                             bright (a.getBlue(), b.getBlue())));
        }
    }

    return result;
}
} // namespace PictureComparison
