// SPDX-License-Identifier: GPL-3.0-or-later
// Sizing and rebuilding of the engine.
#include "processor/CorvaneQ7AudioProcessor.h"

int CorvaneQ7AudioProcessor::factorToBuild() const noexcept
{
    // A session may ask for any number; what is built stays within what the filters are made for.
    return juce::jlimit (1, UserDefaults::maxOversampling, oversamplingCurrent);
}

void CorvaneQ7AudioProcessor::reconfigure (double sampleRate)
{
    handOver.hold();
    rebuild (sampleRate);
    handOver.letGo();
}

void CorvaneQ7AudioProcessor::rebuildIfAsked()
{
    // A new factor rebuilds the engine on the audio thread: the price of a change that a user makes by hand. While a
    // thread plans settings, this block goes on with the old engine.
    if (maxBlockSize > 0 && oversamplingCurrent != oversamplingRequested && handOver.tryHold())
    {
        rebuild (getSampleRate());
        handOver.letGo();
    }
}

void CorvaneQ7AudioProcessor::rebuild (double sampleRate)
{
    reconfiguring = true;

    const auto channels = getTotalNumInputChannels();
    const auto rampLength = rampLengthFor (sampleRate);

    followPlan();

    for (int s = 0; s < 2; ++s)
        levels[s].landOn (settingsSlots[s], rampLength);

    oversamplingCurrent = oversamplingRequested;
    builtFactor = factorToBuild();
    builtChannels = channels;
    const auto factor = builtFactor;
    const auto internalRate = factor * sampleRate;
    const auto internalBlock = factor * maxBlockSize;
    const auto dt = 1.0 / internalRate;

    oversamplers.resize (static_cast<std::size_t> (channels));

    if (factor > 1)
        for (auto& oversampler : oversamplers)
            oversampler.design (factor);

    mixRamp.restAtTarget (rampLength);

    for (auto& group : bandGroups)
    {
        group.compressor.prepare (internalRate, channels, internalBlock);
        group.inputFollowers.assign (static_cast<std::size_t> (channels), RmsFollower (internalRate));
        group.outputFollowers.assign (static_cast<std::size_t> (channels), RmsFollower (internalRate));
        group.inputPeak = group.outputPeak = 0.0;
    }

    meterDecay = std::exp (dt / -1.2); // 1.2 seconds for a factor of e

    transformer.prepare (dt);
    transformerStates.assign (static_cast<std::size_t> (channels), OutputChannelState (dt));

    for (auto* buffer : { &lowBuffer, &midBuffer, &highBuffer, &workBuffer })
        buffer->setSize (channels, internalBlock);

    controlBuffer.setSize (channels + numCurves, maxBlockSize);
    piecePointers.assign (static_cast<std::size_t> (channels), nullptr);

    lowSplit.prepare (internalRate, channels, internalBlock);
    highSplit.prepare (internalRate, channels, internalBlock);

    // The engine stands built: settings are planned from here.
    EngineControls controls;
    tell (controls);
    handOver.restartFrom (controls);
    handOver.planHeld ([this] (EngineControls& planned) { plan (planned); });
    followPlan();

    dryDelay.setSampleRate (channels, sampleRate);
    dryDelay.rebuild (channels, latencyOf (factor));

    reconfiguring = false;
}
