// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"
#include "render/RenderOptions.h"

#include <cstdint>
#include <filesystem>
#include <limits>
#include <vector>

/** Changes of controls in the course of a render.

    File     lines "frame,identifier,value". The frame counts from 0 in the input and goes on into the tail; lines may
             stand in any order, and those of one frame are made in theirs. A value is a text of the control, or "n:"
             and a normalised number from 0 to 1. A first line "frame,identifier,value" may name the columns.
    Errors   RenderError with ExitStatus::input that names the line.
*/
class Automation
{
public:
    static constexpr std::int64_t never = std::numeric_limits<std::int64_t>::max();

    /** No changes at all. */
    Automation() = default;

    explicit Automation (const std::filesystem::path& file);

    /** Makes the changes that stand before this frame or at it, and are not made yet. */
    void advanceTo (std::int64_t frame, CorvaneQ7AudioProcessor& processor);

    /** Where the next change stands. */
    std::int64_t nextFrame() const noexcept { return next < points.size() ? points[next].frame : never; }

private:
    struct Point
    {
        std::int64_t frame;
        ParameterChange change;
    };

    static Point pointOf (const std::string& line);

    std::vector<Point> points;
    std::size_t next = 0;
};
