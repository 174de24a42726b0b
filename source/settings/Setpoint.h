// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/Shared.h"

#include <cstdint>

/** What a control asks for: the target of a ramp that somebody else advances, and how often it was set. A target set
    again counts too: whether a ramp has to begin anew is the ramp's matter.

    Threads  any.
*/
struct Setpoint
{
    explicit Setpoint (double value) noexcept : target (value) {}
    Setpoint (const Setpoint& other) noexcept : target (other.target), changes (other.timesSet()) {}
    ~Setpoint() = default;
    Setpoint& operator= (const Setpoint&) = delete; // a copy sets a target

    void setTarget (double value) noexcept
    {
        target.storeInOrder (value);
        changes.fetch_add (1);
    }

    /** Read it before the target: what is read then is at least as new. */
    std::uint32_t timesSet() const noexcept { return changes.load(); }

    Shared<double> target;

private:
    std::atomic<std::uint32_t> changes { 0 };
};
