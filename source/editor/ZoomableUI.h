// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>

/** What can take its size anew after the zoom factor has changed. Message thread. */
class ZoomableUI
{
public:
    virtual ~ZoomableUI() = default;
    virtual void applyZoom() = 0;

    /** A zoom factor as it is used and shown. A session may hold any number: one that is none counts as 1, and the
        limits keep a window whose menu can still be reached. */
    static float usableZoom (float zoom) noexcept
    {
        constexpr float smallest = 0.35f, largest = 10.0f;
        return std::isnan (zoom) ? 1.0f : std::clamp (zoom, smallest, largest);
    }
};
