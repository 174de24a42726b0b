// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** What can take its size anew after the zoom factor has changed. Message thread. */
class ZoomableUI
{
public:
    virtual ~ZoomableUI() = default;
    virtual void applyZoom() = 0;
};
