// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BandControls.h"
#include "dsp/CrossoverFilter.h"
#include "settings/ChannelSettings.h"
#include "settings/GeometricSmoother.h"

#include <cstdint>

/** The three levels of a slot on their way to what its record asks for. Linear gains, one step a host sample. */
struct LevelRamps
{
    /** Sets the targets that were set anew since. */
    void take (const ChannelSettings& record) noexcept
    {
        take (in, inTimes, record.inLevelLinear);
        take (out, outTimes, record.outLevelLinear);
        take (master, masterTimes, record.masterGainLinear);
    }

    /** Lands on the record's values, with a new ramp length in host samples. */
    void landOn (const ChannelSettings& record, std::uint16_t length) noexcept
    {
        take (record);
        in.target = record.inLevelLinear.target;
        out.target = record.outLevelLinear.target;
        master.target = record.masterGainLinear.target;

        for (auto* ramp : { &in, &out, &master })
            ramp->restAtTarget (length);
    }

    void follow (const LevelRamps& plan, bool exactly) noexcept
    {
        in.follow (plan.in, exactly);
        out.follow (plan.out, exactly);
        master.follow (plan.master, exactly);
        inTimes = plan.inTimes;
        outTimes = plan.outTimes;
        masterTimes = plan.masterTimes;
    }

    GeometricSmoother in { 1.0 }, out { 1.0 }, master { 1.0 };

private:
    static void take (GeometricSmoother& ramp, std::uint32_t& times, const Setpoint& setpoint) noexcept
    {
        if (const auto now = setpoint.timesSet(); now != times)
        {
            times = now;
            ramp.setTarget (setpoint.target);
        }
    }

    std::uint32_t inTimes = 0, outTimes = 0, masterTimes = 0; // of the setpoints, when last taken
};

/** What the block loop itself takes from the settings. */
struct AudibleSettings
{
    int slot = 0; // whose levels sound and whose meters move: 0 A, 1 B
    bool nuke = false;
    double calibrationGain = 14.5075; // linear
};

/** All that controls move in the engine: planned by whoever applies the settings, followed by the audio path. */
struct EngineControls
{
    LinearSmoother mixRamp { 0.0 }; // wet amount, 0 to 1, host rate
    AudibleSettings audible;
    LevelRamps levels[2];
    BandControls<SVResponse> bands[ChannelSettings::numBands] { BandControls<SVResponse> (0),
                                                                BandControls<SVResponse> (1),
                                                                BandControls<SVResponse> (2) };
    CrossoverResponse lowSplit { CrossoverResponse::lowPass };
    CrossoverResponse highSplit { CrossoverResponse::highPass };

    std::uint64_t madeAt = 0; // the count of blocks that had run when this was so
};
