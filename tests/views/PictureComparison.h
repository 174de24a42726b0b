// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

#include <gtest/gtest.h>

#include <vector>

/** Says whether two pictures show the same, tile by tile.

    A picture is cut into tiles of 32 x 32 px. In each, the mean absolute difference of the three colours, in levels of
    255, is taken twice: over the pixels that show artwork, and over those that are written in a font of the system.

    Artwork  comes from our own bitmaps by our own arithmetic. Compilers and processors may round a pixel up or down by
             one level and no more, so a tile stays far below 0.5 levels. The smallest thing that must be seen, a small
             lamp moved by one pixel at 70 %, makes more than 1 level in a tile (PicturesTest measures it).
    Text     is drawn from outlines that another release of the font or of the library that reads it may draw a little
             otherwise: grey levels of the edges change, while a missing or other text changes whole letters.
*/
namespace PictureComparison
{
constexpr int tileSize = 32;             // px
constexpr double artworkTolerance = 0.5; // levels, mean of a tile
constexpr double textTolerance = 6.0;    // levels, mean of a tile
constexpr int fewestPixels = 32;         // of a kind in a tile, for its mean to count

struct Tile
{
    juce::Rectangle<int> area;
    double artwork = 0.0, text = 0.0; // mean absolute differences in levels

    bool isAlike() const noexcept { return artwork <= artworkTolerance && text <= textTolerance; }
};

/** All tiles of two pictures of one size. */
std::vector<Tile> tilesOf (const juce::Image& reference, const juce::Image& picture,
                           const std::vector<juce::Rectangle<int>>& systemText);

/** Success, or which tiles differ by how much. Pictures of different sizes differ. */
::testing::AssertionResult alike (const juce::Image& reference, const juce::Image& picture,
                                  const std::vector<juce::Rectangle<int>>& systemText = {});

/** What differs, eight times as bright, for the eye. */
juce::Image difference (const juce::Image& reference, const juce::Image& picture);
} // namespace PictureComparison
