// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/EngineControls.h"
#include "settings/LatestValue.h"

#include <atomic>
#include <cstdint>
#include <thread>

/** The way of control changes from any thread to the audio path, on which nothing is lost and nobody waits.

    Whoever changed the record plans what the engine makes of it: one thread at a time, on `planned`, which runs the
    same ramps as the audio path. A thread that finds another at it leaves: the other looks again when it is done, and
    the audio path looks at the start of each block. A plan goes over whole, so that no filter is ever half set. What the
    ramps have come to meanwhile comes back the same way at a block's end.

    A plan that was made from where the ramps stand now is followed exactly: in one thread's order, it is as though the
    control had moved the ramps themselves. While a block ran beside, its targets are followed from where the ramps are.

    Threads  settingsChanged, planNewest on any, the audio thread included: no lock, a bounded number of passes. hold
             when stopped. takePlan and blockEnds on audio.
*/
class ControlHandOver
{
public:
    // ---- whoever changed something -----------------------------------------------------------
    void settingsChanged() noexcept { changes.fetch_add (1); }

    /** Plans until the newest change is in, unless another thread is at it. plan: void (EngineControls&). */
    template <typename Plan>
    void planNewest (Plan&& plan) noexcept
    {
        constexpr int mostPasses = 4; // what is left then, the next block or the next change finds

        for (int pass = 0; pass < mostPasses && isBehind() && tryHold(); ++pass)
        {
            planHeld (plan);
            letGo();
        }
    }

    bool isBehind() const noexcept { return changes.load() != planned.load(); }

    // ---- whoever rebuilds the engine, or plans ------------------------------------------------
    bool tryHold() noexcept { return ! held.exchange (true); }
    void letGo() noexcept { held.store (false); }

    /** Waits for a plan in progress. Stopped. */
    void hold() noexcept
    {
        while (! tryHold())
            std::this_thread::yield();
    }

    /** Plans from where the audio path's ramps stand, and hands over. Held. */
    template <typename Plan>
    void planHeld (Plan&& plan) noexcept
    {
        const auto newest = changes.load();
        const auto blocks = numBlocks.load (std::memory_order_acquire);

        if (controls.madeAt != blocks)
        {
            if (const auto* state = states.take())
                controls = *state;

            controls.madeAt = blocks;
        }

        plan (controls);
        plans.back() = controls;
        plans.publish();
        planned.store (newest);
    }

    /** Begins anew from the engine as it was built. Held, and no block runs. */
    void restartFrom (const EngineControls& state) noexcept
    {
        states.take(); // what came back before is past
        controls = state;
        controls.madeAt = numBlocks.load();
    }

    // ---- the audio path ----------------------------------------------------------------------
    struct Plan
    {
        const EngineControls* controls; // a null pointer when there is none anew
        bool exact;
    };

    /** longestRamp: host samples in which every ramp comes to rest. */
    Plan takePlan (int longestRamp) noexcept
    {
        const auto* plan = plans.take();

        if (plan != nullptr)
            samplesToTell = longestRamp + 1;

        return { plan, plan != nullptr && plan->madeAt == numBlocks.load (std::memory_order_relaxed) };
    }

    /** Tells what the ramps have come to, while any may be moving. numSamples: host samples that they moved by.
        tell: void (EngineControls&). */
    template <typename Tell>
    void blockEnds (int numSamples, Tell&& tell) noexcept
    {
        const auto blocks = numBlocks.load (std::memory_order_relaxed) + 1;

        if (samplesToTell > 0)
        {
            tell (states.back());
            states.back().madeAt = blocks;
            states.publish();
            samplesToTell -= numSamples;
        }

        numBlocks.store (blocks, std::memory_order_release);
    }

private:
    std::atomic<std::uint32_t> changes { 0 }, planned { 0 };
    std::atomic<bool> held { false };
    EngineControls controls; // the plan, touched while held

    LatestValue<EngineControls> plans, states;
    std::atomic<std::uint64_t> numBlocks { 0 };
    std::int64_t samplesToTell = 0;
};
