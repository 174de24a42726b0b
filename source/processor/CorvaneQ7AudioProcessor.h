// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BandCompressor.h"
#include "dsp/CrossoverFilter.h"
#include "dsp/nvx/DelayLine.h"
#include "dsp/OutputTransformer.h"
#include "dsp/OversamplerChannel.h"
#include "parameters/FactoryPrograms.h"
#include "parameters/PluginState.h"
#include "parameters/UserDefaults.h"
#include "processor/ControlHandOver.h"
#include "processor/NoiseSource.h"
#include "processor/RmsFollower.h"
#include "processor/Vst3GainReduction.h"
#include "settings/ChannelSettings.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <vector>

/** The plug-in: what a host talks to, and the owner of the whole signal path.

    Shape    any number of channels, usually 1 or 2, float, in place; the channels processed are the inputs, outputs
             beyond them are silent. A block of any length: longer ones than announced are worked off in pieces.
    Rate     the host's rate fs; the engine runs at fs times the oversampling factor (1 to 16).
    Latency  0 samples at factor 1, 52 at any other.
    Threads  processBlock and processBlockBypassed on audio; prepareToPlay, releaseResources and construction when
             stopped; applySettings, setOversampling, programs and state on any. Control values pass from any thread
             to the audio path by ControlHandOver: no lock, and no change is lost.
    Errors   none are reported. Blocks before the first prepareToPlay, or during a rebuild, are passed on unchanged.
*/
class CorvaneQ7AudioProcessor : public juce::AudioProcessor, public juce::VST3ClientExtensions, public SettingsOwner
{
public:
    static constexpr int numBands = ChannelSettings::numBands;
    static constexpr int oversamplingLatency = 52; // host samples, at every factor above 1

    CorvaneQ7AudioProcessor();
    ~CorvaneQ7AudioProcessor() override = default;

    // ---- the host's calls --------------------------------------------------------------------
    const juce::String getName() const override { return "Corvane Q7"; }

    void prepareToPlay (double sampleRate, int estimatedSamplesPerBlock) override;
    void releaseResources() override;
    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    void processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    using juce::AudioProcessor::processBlock;
    using juce::AudioProcessor::processBlockBypassed;

    double getTailLengthSeconds() const override { return 0.0; }
    bool acceptsMidi() const override { return false; }
    bool producesMidi() const override { return false; }

    bool hasEditor() const override;
    juce::AudioProcessorEditor* createEditor() override;

    int getNumPrograms() override { return FactoryPrograms::numPrograms; }
    int getCurrentProgram() override { return currentProgram; }
    void setCurrentProgram (int index) override;
    const juce::String getProgramName (int index) override;
    void changeProgramName (int, const juce::String&) override {}

    void getStateInformation (juce::MemoryBlock& destination) override;
    void setStateInformation (const void* data, int sizeInBytes) override;

    /** VST3 alone: hosts that draw gain reduction ask for its interface. */
    std::int32_t queryIEditController (const Steinberg::TUID interfaceId, void** object) override;

    /** The reduction of the band that is turned down most, in dB, 0 or negative; 0 while bypassed. Any thread. */
    double deepestGainReductionDb() const noexcept;

    // ---- parameters by index: the table's order is the host's --------------------------------
    // The framework keeps these operations for older hosts only; here they are plain forwards to the objects.
    int getNumParameters() override { return getParameters().size(); }
    float getParameter (int index) override;
    const juce::String getParameterName (int index) override;
    const juce::String getParameterText (int index) override;
    float getParameterDefaultValue (int index) override;
    int getParameterNumSteps (int index) override;
    bool isMetaParameter (int index) const override;
    bool isParameterOrientationInverted (int index) const override;

    /** What a user's hand on a control opens and closes, for hosts that record automation. Message thread. */
    void beginParameterChangeGesture (int index);
    void endParameterChangeGesture (int index);

    /** Calls the object's setValue, which applies the settings; an index without an object applies them alone. */
    void setParameter (int index, float newValue) override;

    /** The same, and tells the host and other listeners. */
    void setParameterNotifyingHost (int index, float newValue) override;

    /** True in the hosts of an old wrapper that take linked changes and gestures of a touched control's siblings amiss. */
    bool hostWantsSilentLink() const noexcept override;

    // ---- the road of a control change --------------------------------------------------------
    /** The record behind the audible slot. */
    ChannelSettings& activeSettings() noexcept { return settingsSlots[activeSlot]; }

    /** Hands the active record over to the engine: mix, levels, the three bands, the crossovers. The audio path follows
        from the next block on. Any thread; cheap, and without effect when nothing changed. */
    void applySettings() override;

    /** Takes over what was handed to the engine since the last block; the block loop does it first. Audio. */
    void followSettings() noexcept;

    /** Points all parameter objects at the active record. */
    void rebindParameters();

    /** Makes a slot audible, 0 for A or 1 for B, and tells host and listeners. Message thread. */
    void selectSlot (int slot);

    /** Copies the audible slot to the other one, by the records' copy rule. Message thread. */
    void copyToOtherSlot();

    /** Asks for an oversampling factor and tells host and listeners its latency. The next block, or the next
        prepareToPlay, rebuilds the engine. Any thread but audio. */
    void setOversampling (int factor);

    /** Stores the level in dBu of digital full scale, in the active slot, and applies it. Any thread. */
    void setCalibration (double calibrationDb);

    /** Rebuilds all that depends on rate, block size, channels or factor; the one place that allocates. Stopped, or
        on audio within the block that finds a new factor. */
    void reconfigure (double sampleRate);

    /** Takes another source of the noise floor; it must outlive its use. Stopped. */
    void setNoiseSource (NoiseSource& source) noexcept { noise = &source; }

    // ---- members that the audio path reads ---------------------------------------------------
    int maxBlockSize = 0; // host samples; 0 until prepareToPlay

    /** A band with its two meter taps. */
    struct BandGroup
    {
        explicit BandGroup (int index) : compressor (index) {}

        BandCompressor compressor;
        std::vector<RmsFollower> inputFollowers, outputFollowers; // one a channel
        double inputPeak = 0.0, outputPeak = 0.0;                 // decaying peaks of the running RMS
    };

    BandGroup bandGroups[numBands] { BandGroup (0), BandGroup (1), BandGroup (2) };
    double meterDecay = 0.0; // of the peaks, per processing-rate sample

    LinearSmoother mixRamp { 0.0 }; // wet amount, 0 to 1, host rate
    LevelRamps levels[2];           // of the slots A and B, host rate
    AudibleSettings audible;

    OutputTransformer transformer;
    std::vector<OutputChannelState> transformerStates; // one a channel

    CrossoverFilter lowSplit { CrossoverFilter::lowPass };
    CrossoverFilter highSplit { CrossoverFilter::highPass };

    juce::AudioBuffer<float> lowBuffer, midBuffer, highBuffer; // channels x factor * maxBlockSize
    juce::AudioBuffer<float> controlBuffer;                    // (channels + 5) x maxBlockSize

    Shared<float> uiZoom = 1.0f; // editor scale, usually 0.7 to 1; a session may hold any number

    Shared<int> activeSlot = 0; // 0 is A, 1 is B
    ChannelSettings settingsSlots[2] { ChannelSettings (*this), ChannelSettings (*this) };
    juce::String programNames[FactoryPrograms::numPrograms];
    std::vector<ChannelSettings> programs; // fifteen
    Shared<int> currentProgram = 0;
    Shared<std::uint32_t> lastStateRestoreMs = 0u; // millisecond counter at the last restore
    std::uint32_t (*millisecondCounter)() noexcept = juce::Time::getMillisecondCounter; // tests move it

    Shared<bool> freshInstance = true;            // until the first setStateInformation
    Shared<int> oversamplingRequested = 1;        // wanted by user or state
    juce::AudioBuffer<float> workBuffer;          // channels x factor * maxBlockSize
    int oversamplingCurrent = 1;                  // what the engine is built for
    std::vector<OversamplerChannel> oversamplers; // one a channel
    NVX::DelayLine dryDelay;                      // keeps the dry copy in step with the latency
    Shared<bool> reconfiguring = false;           // true while reconfigure runs
    int hostType = 0;                             // juce::PluginHostType::HostType

private:
    /** Per-sample control curves of a block; the dry copies stand behind them, one a channel. */
    enum Curve : int
    {
        wetCurve,
        dryCurve,
        masterCurve,
        inputCurve,
        outputCurve,
        numCurves
    };

    /** A stretch of the host's block of at most maxBlockSize samples. */
    void processPiece (float* const* channels, int numChannels, int numSamples);
    void processCore (float* const* channels, int numSamples, int numChannels, ChannelSettings& settings);

    void keepDryCopy (float* const* channels, int numChannels, int numSamples) noexcept;
    void addDryCopy (float* const* channels, int numChannels, int numSamples) noexcept;
    void addNoise (float* samples, int numSamples) noexcept;
    void processOversampled (float* const* channels, int numChannels, int numSamples, ChannelSettings& settings);
    void splitBands (float* const* channels, int numSamples, int numChannels) noexcept;
    void processBands (int numSamples, int numChannels, ChannelSettings& settings) noexcept;
    void sumBandsIntoTransformer (float* const* channels, int numSamples, int numChannels, bool nuke) noexcept;

    /** Circuit units to multiples of +4 dBu: 0.7746 V * 10^(4/20). */
    static constexpr double levelScale = 1.2276582668803786;

    double tap (std::vector<RmsFollower>& followers, double levelPeak, float* const* channels, int numSamples,
                int numChannels) const noexcept;
    void updateMetersIdle (int numSamples) noexcept;

    bool engineIsReady() const noexcept;
    int numChannelsOf (const juce::AudioBuffer<float>& buffer) const noexcept;
    void clearOutputsWithoutInput (juce::AudioBuffer<float>& buffer) const;
    int factorToBuild() const noexcept;
    void planSettings() noexcept;
    void plan (EngineControls& controls) noexcept;
    void followPlan() noexcept;
    void tell (EngineControls& controls) const noexcept;
    void endBlock (int numSamples) noexcept;
    void rebuildIfAsked();
    void rebuild (double sampleRate);
    void restoreOptions (const PluginState::Reader& state);
    void changeOversampling (int factor);
    static int latencyOf (int factor) noexcept { return factor >= 2 ? oversamplingLatency : 0; }

    Vst3GainReduction gainReductionReport { [this] { return deepestGainReductionDb(); } };
    NoiseSource* noise = &NoiseSource::system();
    ControlHandOver handOver;
    Shared<bool> hostBypasses = false; // the last block was one that the host bypassed
    int builtFactor = 1;               // the requested factor, limited to 1 to 16
    int builtChannels = 0;
    std::vector<float*> piecePointers; // channel pointers of a piece

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (CorvaneQ7AudioProcessor)
};
