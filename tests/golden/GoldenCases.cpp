// SPDX-License-Identifier: GPL-3.0-or-later
#include "golden/GoldenCases.h"

#include "golden/GoldenFoundations.h"
#include "golden/GoldenRun.h"
#include "parameters/ParameterTable.h"

#include <random>

namespace
{
constexpr int factors[] = { 1, 2, 3, 4, 8, 16 };
constexpr int wideAndBright = 11; // the one program that works in mid/side
constexpr int numAutomated = 38;  // the controls of version 1.0.0: one that is added leaves the stored rows as they are

using Processor = CorvaneQ7AudioProcessor;

void set (Processor& processor, const char* identifier, float x)
{
    processor.setParameter (ParameterTable::indexOf (identifier), x);
}

void setAllBands (Processor& processor, const std::string& control, float x)
{
    for (const auto* band : { "Low", "Mid", "High" })
        set (processor, (band + control).c_str(), x);
}

std::string number (int value) { return (value < 10 ? "0" : "") + std::to_string (value); }
std::string times (int factor) { return "x" + number (factor); }
std::string shape (int channels) { return channels == 1 ? "mono" : "stereo"; }

class Cases
{
public:
    std::vector<GoldenCase> all()
    {
        addFoundations();
        addPrograms();
        addControls();
        addBlocks();
        addInputs();
        addRates();
        addMidSide();
        addHostHabits();
        return std::move (cases);
    }

private:
    void add (const std::string& name, const std::string& reason, const GoldenRun& run)
    {
        cases.push_back ({ name, reason, run.sampled, false, run });
    }

    void addFoundations()
    {
        cases.push_back ({ "library-functions", "the C library at the arguments of the designs", false, true,
                           GoldenFoundations::libraryFunctions });
        cases.push_back ({ "control-law", "the law's table, which the C library helps to make", false, true,
                           GoldenFoundations::controlLaw });
        cases.push_back ({ "detector-curves", "the five stored curves and the power behind their ends", false, true,
                           GoldenFoundations::detectorCurves });
    }

    void addPrograms()
    {
        for (int program = 0; program < FactoryPrograms::numPrograms; ++program)
        {
            for (const auto channels : { 2, 1 })
            {
                for (const auto factor : factors)
                {
                    GoldenRun run;
                    run.channels = channels;
                    run.factor = factor;
                    run.before = [program] (Processor& processor) { processor.setCurrentProgram (program); };
                    run.sampled = channels == 2 && program == wideAndBright;
                    add ("program-" + number (program) + "-" + shape (channels) + "-" + times (factor),
                         "a factory program as it stands", run);
                }
            }
        }
    }

    void addControls()
    {
        for (int index = 0; index < ParameterTable::numParameters; ++index)
        {
            const std::string identifier = ParameterTable::rows[index].identifier;

            for (const auto factor : { 1, 4 })
            {
                GoldenRun run;
                run.factor = factor;
                run.frames = 11264; // over a whole ramp of 4800 between two moves
                run.sampled = identifier.find ("MidSide") != std::string::npos;
                run.before = [] (Processor& processor) { setAllBands (processor, "Threshold", 0.3f); };
                run.atBlock = [index] (Processor& processor, int frame)
                {
                    if (frame == 512)
                        processor.setParameter (index, 0.0f);
                    else if (frame == 6144)
                        processor.setParameter (index, 1.0f);
                    else if (frame == 7168)
                        processor.setParameter (index, 0.37f);
                    else if (frame == 9216)
                        processor.setParameter (index, processor.getParameterDefaultValue (index));
                };
                add ("control-" + identifier + "-" + times (factor),
                     "moved down, up, and away in mid-ramp while it sounds", run);
            }
        }

        for (const auto channels : { 2, 1 })
        {
            for (const auto factor : { 1, 2, 16 })
            {
                GoldenRun run;
                run.channels = channels;
                run.factor = factor;
                run.frames = 8192;
                run.blocks = { 64 };
                run.atBlock = [] (Processor& processor, int frame)
                {
                    std::mt19937 random (0xa070u + static_cast<std::uint32_t> (frame));

                    for (int index = 0; index < numAutomated; ++index)
                    {
                        const auto x = static_cast<float> (random() >> 8) * 0x1p-24f;
                        const auto isMidSide = index < 27 && index % 9 == 3;

                        if (! isMidSide)
                            processor.setParameter (index, x);
                    }
                };
                add ("automation-" + shape (channels) + "-" + times (factor),
                     "every control but Mid Side automated in every block", run);
            }
        }

        for (const auto* control : { "Threshold", "Gain", "Solo" })
        {
            GoldenRun run;
            run.frames = 6144;
            run.before = [] (Processor& processor) { set (processor, "Link", 1.0f); };
            run.atBlock = [control] (Processor& processor, int frame)
            {
                if (frame % 1024 == 512)
                    set (processor, (std::string ("Mid") + control).c_str(), frame % 2048 == 512 ? 0.2f : 0.8f);
            };
            add (std::string ("linked-") + control, "one band's control moves the three", run);
        }
    }

    void addBlocks()
    {
        const std::vector<std::pair<std::string, std::vector<int>>> cuts { { "1", { 1 } },
                                                                           { "7", { 7 } },
                                                                           { "64", { 64 } },
                                                                           { "512", { 512 } },
                                                                           { "513", { 513 } },
                                                                           { "4096", { 4096 } },
                                                                           { "odd",
                                                                             { 1, 511, 33, 128, 257, 2, 1000 } } };

        for (const auto& [name, blocks] : cuts)
        {
            for (const auto factor : { 1, 3, 16 })
            {
                for (const auto noise : { GoldenRun::Noise::seeded, GoldenRun::Noise::held })
                {
                    GoldenRun run;
                    run.factor = factor;
                    run.blocks = blocks;
                    run.noise = noise;
                    run.input = GoldenRun::Input::bursts;
                    run.before = [] (Processor& processor)
                    {
                        setAllBands (processor, "Threshold", 0.2f);
                        set (processor, "HPF", 0.5f);
                        set (processor, "Mix", 0.8f);
                    };
                    add ("blocks-of-" + name + "-" + times (factor)
                             + (noise == GoldenRun::Noise::held ? "-without-noise" : "-with-noise"),
                         "the host's block length, longer than announced too", run);
                }
            }
        }
    }

    void addInputs()
    {
        using Input = GoldenRun::Input;
        const std::vector<std::pair<std::string, Input>> inputs {
            { "silence", Input::silence },         { "bursts", Input::bursts },     { "quiet", Input::quiet },
            { "overload", Input::overload },       { "infinity", Input::infinite }, { "nan", Input::notANumber },
            { "minus-zero", Input::negativeZero }, { "denormal", Input::denormal }, { "huge", Input::huge },
            { "impulse", Input::impulse }
        };

        for (const auto& [name, input] : inputs)
        {
            for (const auto channels : { 2, 1 })
            {
                for (const auto factor : { 1, 2, 8 })
                {
                    GoldenRun run;
                    run.channels = channels;
                    run.factor = factor;
                    run.input = input;
                    run.blocks = { 512, 100 };
                    run.before = [] (Processor& processor)
                    {
                        setAllBands (processor, "Threshold", 0.1f);
                        set (processor, "LowRatio", 0.0f);
                        set (processor, "MidRatio", 0.75f);
                        set (processor, "HighRatio", 1.0f);
                        set (processor, "LowAttack", 0.0f);
                        set (processor, "HighAttack", 1.0f);
                        set (processor, "MidGain", 0.0f);
                    };
                    add ("input-" + name + "-" + shape (channels) + "-" + times (factor),
                         "what a host may send; the curves' steep and flat ends", run);
                }
            }
        }

        for (const auto* control : { "LowMeter", "MidMeter", "HighMeter" })
        {
            for (const auto x : { 0.0f, 1.0f })
            {
                GoldenRun run;
                run.blocks = { 300 };
                run.before = [control, x] (Processor& processor) { set (processor, control, x); };
                run.bypassed = [] (int frame) { return frame > 2500 && frame < 3400; };
                add (std::string ("taps-") + control + (x < 0.5f ? "-in" : "-out"),
                     "a meter's tap at work and falling back while the host bypasses", run);
            }
        }

        for (const auto noise : { GoldenRun::Noise::seeded, GoldenRun::Noise::system })
        {
            for (const auto channels : { 2, 1 })
            {
                GoldenRun run;
                run.channels = channels;
                run.noise = noise;
                run.input = GoldenRun::Input::silence;
                add (std::string ("noise-") + (noise == GoldenRun::Noise::system ? "library-" : "seeded-")
                         + shape (channels),
                     "the noise floor alone", run);
            }
        }
    }

    void addRates()
    {
        for (const auto rate : { 11025.0, 22050.0, 44100.0, 88200.0, 96000.0, 192000.0, 384000.0 })
        {
            for (const auto factor : { 1, 2 })
            {
                GoldenRun run;
                run.rate = rate;
                run.factor = factor;
                run.before = [] (Processor& processor)
                {
                    processor.setCurrentProgram (4);
                    setAllBands (processor, "Recovery", 0.5f);
                };
                add ("rate-" + std::to_string (static_cast<int> (rate)) + "-" + times (factor),
                     "the host's rate, below and above the usual ones", run);
            }
        }
    }

    void addMidSide()
    {
        for (const auto* band : { "Low", "Mid", "High" })
        {
            for (const auto x : { 0.0f, 1.0f })
            {
                for (const auto factor : { 1, 2 })
                {
                    GoldenRun run;
                    run.factor = factor;
                    run.sampled = true;
                    run.before = [band, x] (Processor& processor)
                    {
                        setAllBands (processor, "Threshold", 0.2f);
                        set (processor, (std::string (band) + "MidSide").c_str(), x);
                    };
                    add (std::string ("mid-side-") + band + (x < 0.5f ? "-mid-" : "-side-") + times (factor),
                         "one band works on the middle or on the sides alone", run);
                }
            }
        }

        GoldenRun automated;
        automated.sampled = true;
        automated.frames = 8192;
        automated.blocks = { 64 };
        automated.atBlock = [] (Processor& processor, int frame)
        {
            std::mt19937 random (0x51deu + static_cast<std::uint32_t> (frame));

            for (int index = 0; index < numAutomated; ++index)
                processor.setParameter (index, static_cast<float> (random() >> 8) * 0x1p-24f);
        };
        add ("mid-side-automation", "every control automated in every block, Mid Side too", automated);

        GoldenRun mono;
        mono.channels = 1;
        mono.before = [] (Processor& processor) { setAllBands (processor, "MidSide", 1.0f); };
        add ("mid-side-mono", "one channel has no sides: the control does nothing", mono);
    }

    void addHostHabits()
    {
        GoldenRun bypassControl;
        bypassControl.frames = 16384;
        bypassControl.factor = 2;
        bypassControl.atBlock = [] (Processor& processor, int frame)
        {
            if (frame == 1024 || frame == 7168)
                set (processor, "Bypass", frame == 1024 ? 1.0f : 0.0f);
        };
        add ("bypass-control", "faded out, at rest on the delayed input, faded in", bypassControl);

        GoldenRun hostBypass;
        hostBypass.factor = 4;
        hostBypass.frames = 8192;
        hostBypass.bypassed = [] (int frame) { return (frame / 1024) % 2 == 1; };
        add ("bypass-of-the-host", "every other stretch of blocks bypassed", hostBypass);

        GoldenRun mix;
        mix.frames = 16384;
        mix.factor = 2;
        mix.atBlock = [] (Processor& processor, int frame)
        {
            constexpr float ways[] = { 0.0f, 0.5f, 1.0f, 0.25f };

            if (frame % 4096 == 512)
                set (processor, "Mix", ways[frame / 4096]);
        };
        add ("mix-there-and-back", "wet, dry, between, and what the delay kept meanwhile", mix);

        GoldenRun factorChange;
        factorChange.frames = 8192;
        factorChange.atBlock = [] (Processor& processor, int frame)
        {
            constexpr int ways[] = { 2, 16, 1, 3 };

            if (frame % 2048 == 1024)
                processor.setOversampling (ways[frame / 2048]);
        };
        add ("factor-in-flight", "a new factor rebuilds the engine inside the next block", factorChange);

        GoldenRun programs;
        programs.frames = 16384;
        programs.atBlock = [] (Processor& processor, int frame)
        {
            constexpr int ways[] = { 4, 1, 6, 14 };

            if (frame % 4096 == 1024)
                processor.setCurrentProgram (ways[frame / 4096]);
        };
        add ("programs-in-flight", "another program ramps there", programs);

        GoldenRun slots;
        slots.frames = 16384;
        slots.factor = 2;
        slots.atBlock = [] (Processor& processor, int frame)
        {
            if (frame == 512)
            {
                processor.selectSlot (1);
                processor.setCurrentProgram (5);
                processor.setCalibration (18.0);
            }
            else if (frame == 7168)
            {
                processor.selectSlot (0);
            }
            else if (frame == 12288)
            {
                processor.copyToOtherSlot();
                processor.selectSlot (1);
            }
        };
        add ("slots", "A, B with a calibration of its own, A, and A copied to B", slots);

        GoldenRun calibration;
        calibration.frames = 6144;
        calibration.atBlock = [] (Processor& processor, int frame)
        {
            if (frame % 1024 == 512)
                processor.setCalibration (16.0 + frame / 1024);
        };
        add ("calibration", "levels of full scale from 16 dBu up", calibration);

        GoldenRun again;
        again.frames = 8192;
        again.factor = 3;
        again.announced = 128;
        again.atBlock = [] (Processor& processor, int frame)
        {
            if (frame == 2048)
            {
                set (processor, "LowXOver", 0.9f);
                set (processor, "Niveau", 0.0f);
                processor.prepareToPlay (48000.0, 128);
            }
            else if (frame == 5120)
            {
                processor.releaseResources();
                processor.prepareToPlay (48000.0, 333);
            }
        };
        add ("prepared-again", "in mid-ramp, then after a release; blocks longer than announced", again);

        GoldenRun untouched;
        untouched.frames = 8192;
        untouched.touched = false;
        add ("untouched", "a host that prepares at once: the first tenth of a second fades and glides", untouched);

        GoldenRun restored;
        restored.frames = 8192;
        restored.factor = 2;
        restored.atBlock = [] (Processor& processor, int frame)
        {
            if (frame != 2048)
                return;

            juce::MemoryBlock block;
            Processor source;
            source.setCurrentProgram (8);
            source.setCalibration (20.0);
            source.setOversampling (2);
            source.getStateInformation (block);
            processor.setStateInformation (block.getData(), static_cast<int> (block.getSize()));
        };
        add ("restored-session", "a session block carries every control back while it sounds", restored);
    }

    std::vector<GoldenCase> cases;
};
} // namespace

std::vector<GoldenCase> goldenCases() { return Cases().all(); }
