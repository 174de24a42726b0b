// SPDX-License-Identifier: GPL-3.0-or-later
// What a host's session keeps and how it comes back, byte by byte and rule by rule.
#include "parameters/ExpectedParameters.h"
#include "states/StateBlocks.h"
#include "support/Followed.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <locale>
#include <random>
#include <sstream>

namespace
{
using StateBlocks::around;
using StateBlocks::raw;
using StateBlocks::restore;
using StateBlocks::saved;
using StateBlocks::StoredOptions;
using StateBlocks::textOf;
using StateBlocks::with;

/** A new instance's session: the default program, 22 dBu, no oversampling, full size. Typed digit by digit, each the
    nearest float of its value. */
constexpr auto defaultSession = "<CQ7SETTINGS Version=\"1.0.0\""
                                " LowMeter=\"0.50000000000000000000\" LowIn=\"1.00000000000000000000\""
                                " LowSolo=\"0.00000000000000000000\" LowMidSide=\"0.50000000000000000000\""
                                " LowGain=\"0.14285714924335479736\" LowRatio=\"0.50000000000000000000\""
                                " LowThreshold=\"0.53333336114883422852\" LowAttack=\"0.66666668653488159180\""
                                " LowRecovery=\"1.00000000000000000000\""
                                " MidMeter=\"0.50000000000000000000\" MidIn=\"1.00000000000000000000\""
                                " MidSolo=\"0.00000000000000000000\" MidMidSide=\"0.50000000000000000000\""
                                " MidGain=\"0.14285714924335479736\" MidRatio=\"0.50000000000000000000\""
                                " MidThreshold=\"0.53333336114883422852\" MidAttack=\"0.66666668653488159180\""
                                " MidRecovery=\"1.00000000000000000000\""
                                " HighMeter=\"0.50000000000000000000\" HighIn=\"1.00000000000000000000\""
                                " HighSolo=\"0.00000000000000000000\" HighMidSide=\"0.50000000000000000000\""
                                " HighGain=\"0.14285714924335479736\" HighRatio=\"0.50000000000000000000\""
                                " HighThreshold=\"0.53333336114883422852\" HighAttack=\"0.66666668653488159180\""
                                " HighRecovery=\"1.00000000000000000000\""
                                " Mix=\"1.00000000000000000000\" HPF=\"0.00000000000000000000\""
                                " MasterGain=\"0.33333334326744079590\" LowXOver=\"0.30103000998497009277\""
                                " HighXOver=\"0.78617608547210693359\" Nuke=\"0.00000000000000000000\""
                                " Niveau=\"1.00000000000000000000\" Link=\"0.00000000000000000000\""
                                " Bypass=\"0.00000000000000000000\" InLevel=\"0.50000000000000000000\""
                                " OutLevel=\"0.50000000000000000000\"";

constexpr auto defaultOptions =
    " Calibration=\"22.00000000000000000000\" Oversampling=\"1\" UIZoom=\"1.00000000000000000000\"";

double gainOf (double calibrationDb) { return std::pow (10.0, calibrationDb * 0.05) * 1.1523716865; }

/** Every float of a state that a host can see. */
using Values = std::vector<float>;

Values defaults()
{
    Values values;

    for (const auto& expected : Expected::parameters)
        values.push_back (expected.defaultValue);

    return values;
}

/** Equal but for the last bits of frequencies, which pass a logarithm. */
void expectValues (const Values& wanted, CorvaneQ7AudioProcessor& processor)
{
    for (const auto& expected : Expected::parameters)
        EXPECT_FLOAT_EQ (wanted[static_cast<std::size_t> (expected.index)], processor.getParameter (expected.index))
            << expected.identifier;
}
} // namespace

class State : public ::testing::Test
{
protected:
    /** All that a block may change. */
    struct Everything
    {
        explicit Everything (CorvaneQ7AudioProcessor& p)
            : fieldsA (Expected::fieldsOf (p.settingsSlots[0])), fieldsB (Expected::fieldsOf (p.settingsSlots[1])),
              calibrationA (p.settingsSlots[0].calibrationGain), calibrationB (p.settingsSlots[1].calibrationGain),
              oversampling (p.oversamplingRequested), latency (p.getLatencySamples()), slot (p.activeSlot),
              program (p.getCurrentProgram()), zoom (p.uiZoom)
        {
        }

        bool operator== (const Everything& o) const
        {
            return fieldsA == o.fieldsA && fieldsB == o.fieldsB && calibrationA == o.calibrationA
                   && calibrationB == o.calibrationB && oversampling == o.oversampling && latency == o.latency
                   && slot == o.slot && program == o.program && zoom == o.zoom;
        }

        std::vector<double> fieldsA, fieldsB;
        double calibrationA, calibrationB;
        int oversampling, latency, slot, program;
        float zoom;
    };

    /** An instance on which nothing stands at its default, so that any change shows. */
    void moveEverything()
    {
        for (int i = 0; i < Expected::numParameters; ++i)
            processor.setParameter (i, i == Expected::link ? 0.0f : (i % 9 == 1 ? 0.0f : 0.8f));

        processor.setCalibration (18.0);
        processor.setOversampling (4);
        processor.uiZoom = 0.75f;
    }

    void expectIgnored (const std::string& block, const std::string& what)
    {
        moveEverything();
        const Everything before (processor);
        Expected::Listener listener (processor);
        restore (processor, block);
        EXPECT_TRUE (before == Everything (processor)) << what;
        EXPECT_TRUE (listener.moves.empty()) << what;
        EXPECT_TRUE (listener.changes.empty()) << what;
    }

    StoredOptions options; // none at the start
    CorvaneQ7AudioProcessor processor;
    ChannelSettings& record = processor.activeSettings();
};

// ---- writing --------------------------------------------------------------------------------------

TEST_F (State, IsLaidOutByteByByte)
{
    const auto block = saved (processor);
    const auto text = std::string (defaultSession) + defaultOptions + "/>";
    ASSERT_EQ (text, textOf (block));

    EXPECT_EQ (text.size() + 9, block.size());
    EXPECT_EQ (std::string ("\x56\x43\x32\x21", 4), block.substr (0, 4)); // 0x21324356, lowest byte first

    const auto length = static_cast<std::uint32_t> (text.size());
    EXPECT_EQ (static_cast<char> (length & 0xff), block[4]);
    EXPECT_EQ (static_cast<char> (length >> 8), block[5]);
    EXPECT_EQ (std::string (2, '\0'), block.substr (6, 2));
    EXPECT_EQ ('\0', block.back());
    EXPECT_EQ (block.size() - 1, block.find ('\0', 8)); // the only one behind the header
}

TEST_F (State, ReplacesWhatTheHostsBlockHeld)
{
    juce::MemoryBlock block (50000, true);
    processor.getStateInformation (block);
    const auto fresh = saved (processor);
    EXPECT_EQ (fresh, std::string (static_cast<const char*> (block.getData()), block.getSize()));
}

TEST_F (State, OfACurrentProgramIsTheWholeState)
{
    juce::MemoryBlock block;
    processor.getCurrentProgramStateInformation (block);
    EXPECT_EQ (saved (processor), std::string (static_cast<const char*> (block.getData()), block.getSize()));

    const auto other = with ({ { "Mix", "0.25" } });
    processor.setCurrentProgramStateInformation (other.data(), static_cast<int> (other.size()));
    EXPECT_EQ (0.25, record.mix);
}

TEST_F (State, IsTheSameInACountryWithADecimalComma)
{
    struct Comma : std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    moveEverything();
    const auto before = saved (processor);

    const auto old = std::locale::global (std::locale (std::locale::classic(), new Comma));
    std::ostringstream proof;
    proof << 0.5;
    const auto during = saved (processor);
    CorvaneQ7AudioProcessor reloaded;
    restore (reloaded, during);
    const auto again = saved (reloaded);
    const auto valuesAgain = Expected::valuesOf (reloaded);
    std::locale::global (old);

    ASSERT_EQ ("0,5", proof.str()); // or the locale was not the one meant
    EXPECT_EQ (before, during);
    EXPECT_EQ (before, again);
    EXPECT_EQ (Expected::valuesOf (processor), valuesAgain);
}

TEST_F (State, HoldsTheOptionsAsTheyStand)
{
    processor.setCalibration (16.0);
    processor.setOversampling (16);
    processor.uiZoom = 0.7f; // as a float it is 0.699999988079071044921875
    const auto wanted =
        " Calibration=\"16.00000000000000000000\" Oversampling=\"16\" UIZoom=\"0.69999998807907104492\"/>";
    EXPECT_EQ (std::string (defaultSession) + wanted, textOf (saved (processor)));
}

TEST_F (State, HoldsTheCalibrationOfTheAudibleSlot)
{
    processor.setCalibration (20.0);
    processor.selectSlot (1); // 14.5075: 22 dBu to four decimals
    EXPECT_NE (std::string::npos, saved (processor).find (" Calibration=\"22.00000000000000000000\""));
}

TEST_F (State, HoldsACalibrationInWholeDecibels)
{
    const std::pair<double, const char*> cases[] = { { gainOf (17.49), "17.00000000000000000000" },
                                                     { gainOf (17.51), "18.00000000000000000000" },
                                                     { gainOf (-3.4), "-3.00000000000000000000" },
                                                     { gainOf (-99.0), "-99.00000000000000000000" },
                                                     { gainOf (-140.0), "-100.00000000000000000000" },
                                                     { 0.0, "-100.00000000000000000000" },
                                                     { -5.0, "-100.00000000000000000000" },
                                                     { gainOf (30.0), "30.00000000000000000000" } };

    for (const auto& [gain, text] : cases)
    {
        record.calibrationGain = gain;
        EXPECT_NE (std::string::npos, saved (processor).find (std::string (" Calibration=\"") + text + "\"")) << gain;
    }
}

TEST_F (State, OfAFreshStandaloneInstanceHasNoOptions)
{
    // The program keeps its last state by itself, and a first one must not freeze the user's defaults.
    const auto standalone = Expected::makeProcessor (juce::AudioProcessor::wrapperType_Standalone);
    ASSERT_TRUE (standalone->freshInstance);
    EXPECT_EQ (std::string (defaultSession) + "/>", textOf (saved (*standalone)));

    restore (*standalone, "no session at all");
    EXPECT_FALSE (standalone->freshInstance);
    EXPECT_EQ (std::string (defaultSession) + defaultOptions + "/>", textOf (saved (*standalone)));
}

TEST_F (State, OfAnyOtherWrapperHasTheOptionsFromTheStart)
{
    using Processor = juce::AudioProcessor;

    for (const auto type : { Processor::wrapperType_Undefined, Processor::wrapperType_VST, Processor::wrapperType_VST3,
                             Processor::wrapperType_AudioUnit, Processor::wrapperType_AudioUnitv3,
                             Processor::wrapperType_AAX, Processor::wrapperType_LV2 })
        EXPECT_EQ (std::string (defaultSession) + defaultOptions + "/>",
                   textOf (saved (*Expected::makeProcessor (type))))
            << type;
}

TEST_F (State, CanBeReadByTheFrameworkItself)
{
    const auto block = saved (processor);
    const auto element = juce::AudioProcessor::getXmlFromBinary (block.data(), static_cast<int> (block.size()));
    ASSERT_NE (nullptr, element);
    EXPECT_TRUE (element->hasTagName ("CQ7SETTINGS"));
    EXPECT_EQ (0, element->getNumChildElements());
    ASSERT_EQ (Expected::numParameters + 4, element->getNumAttributes()); // version and options
    EXPECT_EQ ("Version", element->getAttributeName (0).toStdString());

    for (const auto& expected : Expected::parameters)
        EXPECT_EQ (expected.identifier, element->getAttributeName (expected.index + 1).toStdString());
}

// ---- reading: what is a session -------------------------------------------------------------------

TEST_F (State, ThatIsNoSessionChangesNothing)
{
    const auto good =
        with ({ { "Mix", "0.25" }, { "Calibration", "20" }, { "Oversampling", "8" }, { "UIZoom", "0.9" } });
    const auto text = textOf (good);
    const auto length = static_cast<std::uint32_t> (text.size());

    expectIgnored ("", "nothing");
    expectIgnored (good.substr (0, 8), "the header alone");

    for (std::size_t size = 1; size < 8; ++size)
        expectIgnored (good.substr (0, size), "a part of the header");

    expectIgnored (good.substr (0, 9), "one character");
    expectIgnored (raw (0x21324357, length, text), "another magic");
    expectIgnored (raw (0x56433221, length, text), "the magic the other way round");
    expectIgnored (raw (StateBlocks::magic, 0, text), "length 0");
    expectIgnored (raw (StateBlocks::magic, 0xffffffffu, text), "length -1");
    expectIgnored (raw (StateBlocks::magic, 0x80000000u, text), "the lowest length");
    expectIgnored (raw (StateBlocks::magic, 5, text), "a length that ends within the tag");
    expectIgnored (text, "the text without a header");
    expectIgnored (around ("<CQ7SETTING Mix=\"0.25\"/>"), "another tag");
    expectIgnored (around ("<CQ7SETTINGS2 Mix=\"0.25\"/>"), "a longer tag");
    expectIgnored (around ("<a><CQ7SETTINGS Mix=\"0.25\"/></a>"), "the element inside another");
    expectIgnored (around ("Mix=\"0.25\""), "no element");
    expectIgnored (around (" "), "a blank");
    expectIgnored (around (std::string (200, '\0')), "zero bytes");
}

TEST_F (State, WithItsTagInSmallLettersIsNoSession)
{
    expectIgnored (around ("<cq7settings Mix=\"0.25\"/>"), "small letters");
    expectIgnored (around ("<Cq7Settings Mix=\"0.25\"/>"), "mixed letters");
}

TEST_F (State, ThatIsNoSessionEndsFreshnessAllTheSame)
{
    ASSERT_TRUE (processor.freshInstance);
    processor.setStateInformation (nullptr, 0);
    EXPECT_FALSE (processor.freshInstance);

    CorvaneQ7AudioProcessor other;
    restore (other, with ({}));
    EXPECT_FALSE (other.freshInstance);
}

TEST_F (State, IsReadToTheEndOfTheBlockWhenItsLengthGoesBeyond)
{
    const auto text = textOf (with ({ { "Mix", "0.25" } }));

    for (const auto length : { static_cast<std::uint32_t> (text.size()) + 1, 65536u, 100000000u, 0x7fffffffu })
    {
        processor.setParameter (Expected::mix, 1.0f);
        restore (processor, raw (StateBlocks::magic, length, text)); // without a closing zero byte
        EXPECT_EQ (0.25, record.mix) << length;
    }
}

TEST_F (State, IsReadUpToItsLengthAndNoFurther)
{
    const auto text = textOf (with ({ { "Mix", "0.25" } }));
    restore (processor, raw (StateBlocks::magic, static_cast<std::uint32_t> (text.size()), text + "<garbage \xff\xfe"));
    EXPECT_EQ (0.25, record.mix);
}

TEST_F (State, MayStandBehindADeclaration)
{
    // As the framework's own writer makes it.
    juce::XmlElement element ("CQ7SETTINGS");
    element.setAttribute ("Mix", "0.25");
    juce::MemoryBlock block;
    juce::AudioProcessor::copyXmlToBinary (element, block);
    processor.setStateInformation (block.getData(), static_cast<int> (block.getSize()));
    EXPECT_EQ (0.25, record.mix);
}

TEST_F (State, IsReadAsTheFrameworksReaderReadsIt)
{
    // Good blocks, cut, with lengths that lie, and with bytes replaced; none holds what that reader chokes on.
    const auto base = saved (processor);
    std::mt19937 random (0x57a7eu);
    auto numRead = 0, numRefused = 0;

    for (int i = 0; i < 2000; ++i)
    {
        auto block = base;
        const auto kind = i % 4;

        if (kind == 0)
            block.resize (random() % (base.size() + 1));
        else if (kind == 1)
            block.replace (4, 4, StateBlocks::littleEndian (random() % 2000));
        else
            for (auto n = random() % 3 + (kind == 2 ? 0u : 1u); n > 0; --n)
                block[8 + random() % (block.size() - 8)] = " \"=/>x0.9A"[random() % 10];

        const auto element = juce::AudioProcessor::getXmlFromBinary (block.data(), static_cast<int> (block.size()));
        const auto isSession = element != nullptr && element->hasTagName ("CQ7SETTINGS");
        (isSession ? numRead : numRefused)++;

        CorvaneQ7AudioProcessor instance, wanted;
        restore (instance, block);

        if (isSession)
            for (const auto& expected : Expected::parameters)
                wanted.setParameter (expected.index,
                                     element->hasAttribute (expected.identifier)
                                         ? static_cast<float> (element->getDoubleAttribute (expected.identifier))
                                         : expected.defaultValue);

        ASSERT_EQ (Expected::fieldsOf (wanted.activeSettings()), Expected::fieldsOf (instance.activeSettings()))
            << "case " << i;
    }

    EXPECT_GT (numRead, 200);
    EXPECT_GT (numRefused, 200);
}

// ---- reading: the controls ------------------------------------------------------------------------

TEST_F (State, WithoutAnAttributeGoesToTheDefaultsAndNotToTheDefaultProgram)
{
    moveEverything();
    restore (processor, with ({}));
    expectValues (defaults(), processor);
    EXPECT_EQ (1.0, record.bands[0].gainDb.target); // the program has 2 dB in every band
    EXPECT_EQ (3.0, record.bands[1].gainDb.target);
    EXPECT_EQ (3.0, record.bands[2].gainDb.target);
    EXPECT_EQ (-10.0, record.bands[0].thresholdDb.target); // the program has -4 dB
    EXPECT_EQ (0.0, record.bands[1].thresholdDb.target);
    EXPECT_EQ (-2.0, record.bands[2].thresholdDb.target);
}

TEST_F (State, WithOneAttributeSetsAllOthersToTheirDefaults)
{
    for (const auto& expected : Expected::parameters)
    {
        if (expected.index == Expected::link)
            continue; // a test of its own

        moveEverything();
        restore (processor, with ({ { expected.identifier, "0.625" } }));

        auto wanted = defaults();
        wanted[static_cast<std::size_t> (expected.index)] =
            Expected::normalisedOf (expected.kind, Expected::valueAt (expected.kind, 0.625f));
        expectValues (wanted, processor);
    }
}

TEST_F (State, WithAnAttributeThatIsNoNumberReadsItAsZero)
{
    for (const auto* text : { "", "abc", "%", "  " })
    {
        moveEverything();
        restore (processor, with ({ { "Mix", text }, { "LowRecovery", text } }));
        EXPECT_EQ (0.0, record.mix) << text;
        EXPECT_EQ (0, record.bands[0].recovery) << text;
    }
}

TEST_F (State, WithNoFiniteNumberLeavesThatControl)
{
    for (const auto* text : { "nan", "inf", "-inf", "1e400", "-1e400", "1e39" }) // 1e39 is no float
    {
        moveEverything();
        const auto before = Expected::fieldsOf (record);
        restore (processor, with ({ { "Mix", text }, { "HPF", text }, { "InLevel", text }, { "MidRatio", text } }));
        EXPECT_EQ (before[Expected::mix], record.mix) << text;
        EXPECT_EQ (before[Expected::hpf], record.hpfHz) << text;
        EXPECT_EQ (before[Expected::inLevel], record.inLevelDb.target) << text;
        EXPECT_EQ (before[14], record.bands[1].ratio) << text;
        EXPECT_EQ (1.0, record.bands[0].gainDb.target) << text; // the others went to their defaults
    }
}

TEST_F (State, ReadsNumbersAsTheyAreWritten)
{
    const std::pair<const char*, float> cases[] = { { "0.25", 0.25f }, { "  0.25", 0.25f }, { "2.5e-1", 0.25f },
                                                    { "+.25", 0.25f }, { "0.25x", 0.25f },  { "0.1", 0.1f },
                                                    { "7", 1.0f },     { "-3", 0.0f },      { "1e30", 1.0f } };

    for (const auto& [text, value] : cases)
    {
        restore (processor, with ({ { "Mix", text } }));
        EXPECT_TRUE (Expected::sameBits (value, processor.getParameter (Expected::mix))) << text;
    }
}

TEST_F (State, OfAnotherVersionOrWithMoreLoadsAllTheSame)
{
    for (const auto* version : { "0.1.0", "1.0.0", "99.0", "", "new" })
    {
        moveEverything();
        restore (processor, with ({ { "Version", version }, { "Mix", "0.25" }, { "Colour", "blue" }, { "mix", "1" } }));
        EXPECT_EQ (0.25, record.mix) << version;
    }

    restore (processor, around ("<CQ7SETTINGS Mix=\"0.75\"><Child Mix=\"0.1\"/>text</CQ7SETTINGS>"));
    EXPECT_EQ (0.75, record.mix);
}

TEST_F (State, RestoresSilently)
{
    moveEverything();
    processor.setOversampling (1);
    Expected::Listener listener (processor);
    restore (processor, with ({ { "Mix", "0.25" }, { "LowGain", "1" } }));
    EXPECT_TRUE (listener.moves.empty());
    EXPECT_TRUE (listener.changes.empty());
}

TEST_F (State, IsInTheEngineAtOnce)
{
    restore (processor, with ({ { "Mix", "0.25" }, { "HighThreshold", "1" }, { "LowXOver", "0.5" }, { "Nuke", "1" } }));
    EXPECT_EQ (0.25, followed (processor).mixRamp.target);
    EXPECT_NEAR (std::pow (10.0, 30.0 / 20.0), followed (processor).bandGroups[2].compressor.thresholdGain,
                 1.0e-11); // 10 + 20
    EXPECT_NEAR (500.0, followed (processor).lowSplit.frequency, 1.0e-10);
    EXPECT_TRUE (followed (processor).bandGroups[0].compressor.nuke);
}

TEST_F (State, WithLinkOnBeforeItEndsWithTheHighBandsValues)
{
    // Link is restored after the bands, so each still forwards, and the high band's values come last.
    record.link = true;
    Expected::Listener listener (processor);
    restore (processor, with ({ { "LowGain", "0" },
                                { "MidGain", "0.5" },
                                { "HighGain", "1" },
                                { "LowMeter", "0" },
                                { "MidIn", "0" },
                                { "HighSolo", "1" },
                                { "HighRatio", "0" },
                                { "Link", "0" } }));

    for (const auto& band : record.bands)
    {
        EXPECT_EQ (20.0, band.gainDb.target);
        EXPECT_EQ (1, band.meter);
        EXPECT_TRUE (band.in);
        EXPECT_TRUE (band.solo);
        EXPECT_EQ (0, band.ratio);
        EXPECT_EQ (-2.0, band.thresholdDb.target); // the high band's default
    }

    EXPECT_FALSE (record.link);

    // The host hears of the forwards alone: two for each of the 27 controls of the bands.
    EXPECT_EQ (54u, listener.moves.size());
    std::array<int, Expected::numParameters> told {};

    for (const auto& move : listener.moves)
        ++told[static_cast<std::size_t> (move.first)];

    for (int i = 0; i < Expected::numParameters; ++i)
        EXPECT_EQ (i < Expected::firstGlobal ? 2 : 0, told[static_cast<std::size_t> (i)]) << i;
}

TEST_F (State, WithLinkInItselfAloneKeepsThreeBandsApart)
{
    Expected::Listener listener (processor);
    restore (processor, with ({ { "LowGain", "0" }, { "MidGain", "0.5" }, { "HighGain", "1" }, { "Link", "1" } }));
    EXPECT_EQ (-1.0, record.bands[0].gainDb.target);
    EXPECT_EQ (10.0, record.bands[1].gainDb.target); // 9.5 counts up
    EXPECT_EQ (20.0, record.bands[2].gainDb.target);
    EXPECT_TRUE (record.link);
    EXPECT_TRUE (listener.moves.empty());
}

TEST_F (State, KeepsEveryFloatToTheLastBit)
{
    std::mt19937 random (0xf10a7u);
    const float awkward[] = { 1.0f / 3.0f,
                              0.1f,
                              std::nextafter (0.5f, 0.0f),
                              std::nextafter (0.5f, 1.0f),
                              std::nextafter (1.0f, 0.0f),
                              std::nextafter (0.75f, 1.0f),
                              0.99999f,
                              0.0078125f,
                              0.003f,
                              1.0f };

    for (int state = 0; state < 100; ++state)
    {
        CorvaneQ7AudioProcessor instance, reloaded;

        for (int i = 0; i < Expected::numParameters; ++i)
        {
            // Below a thousandth a frequency's logarithm has fewer digits than a float: those are not asked for.
            const auto x = random() % 3 == 0 ? awkward[random() % std::size (awkward)]
                                             : 0.001f + 0.999f * (static_cast<float> (random() >> 8) * 0x1p-24f);
            instance.setParameter (i, i == Expected::link ? 0.0f : x);

            if (Expected::parameters[i].steps == Expected::continuous)
            {
                ASSERT_TRUE (Expected::sameBits (x, instance.getParameter (i)))
                    << Expected::parameters[i].identifier << " " << x;
            }
        }

        instance.activeSettings().link = state % 2 == 1;
        restore (reloaded, saved (instance));

        for (int i = 0; i < Expected::numParameters; ++i)
            ASSERT_TRUE (Expected::sameBits (instance.getParameter (i), reloaded.getParameter (i)))
                << "state " << state << ", " << Expected::parameters[i].identifier;

        ASSERT_EQ (saved (instance), saved (reloaded));
    }
}

TEST_F (State, KeepsSmallSharesToTheLastBit)
{
    // Mix passes no mapping. Twenty decimals are written and the framework reads the first eighteen of them, which
    // leaves the nine digits of a float down to 1e-9.
    for (auto x = 1.0f; x >= 1.0e-9f; x *= 0.7713f)
    {
        CorvaneQ7AudioProcessor instance, reloaded;
        instance.setParameter (Expected::mix, x);
        restore (reloaded, saved (instance));
        EXPECT_TRUE (Expected::sameBits (x, reloaded.getParameter (Expected::mix))) << x;
    }
}

TEST_F (State, SavedOnBComesBackOnAOfANewInstance)
{
    processor.setParameter (Expected::mix, 0.1f);
    processor.selectSlot (1);
    processor.setParameter (Expected::mix, 0.6f);
    processor.setParameter (Expected::lowGain, 1.0f);
    processor.setCalibration (19.0);

    CorvaneQ7AudioProcessor reloaded;
    restore (reloaded, saved (processor));
    EXPECT_EQ (0, reloaded.activeSlot);
    EXPECT_FLOAT_EQ (0.6f, static_cast<float> (reloaded.settingsSlots[0].mix));
    EXPECT_EQ (20.0, reloaded.settingsSlots[0].bands[0].gainDb.target);
    EXPECT_DOUBLE_EQ (gainOf (19.0), reloaded.settingsSlots[0].calibrationGain);
    EXPECT_EQ (1.0, reloaded.settingsSlots[1].mix); // the other slot is as new
    EXPECT_EQ (14.5075, reloaded.settingsSlots[1].calibrationGain);
}

TEST_F (State, GoesToTheAudibleSlotOfARunningInstance)
{
    processor.selectSlot (1);
    const auto before = Expected::fieldsOf (processor.settingsSlots[0]);
    const auto calibration = processor.settingsSlots[0].calibrationGain;
    restore (processor, with ({ { "Mix", "0.25" }, { "Calibration", "17" } }));
    EXPECT_EQ (1, processor.activeSlot);
    EXPECT_EQ (0.25, processor.settingsSlots[1].mix);
    EXPECT_DOUBLE_EQ (gainOf (17.0), processor.settingsSlots[1].calibrationGain);
    EXPECT_EQ (before, Expected::fieldsOf (processor.settingsSlots[0]));
    EXPECT_EQ (calibration, processor.settingsSlots[0].calibrationGain);
}

TEST_F (State, KeepsNoProgramNumber)
{
    processor.setCurrentProgram (7);
    CorvaneQ7AudioProcessor reloaded;
    restore (reloaded, saved (processor));
    EXPECT_EQ (0, reloaded.getCurrentProgram());
    EXPECT_EQ (4.0, reloaded.activeSettings().bands[0].gainDb.target);

    restore (processor, with ({}));
    EXPECT_EQ (7, processor.getCurrentProgram()); // and does not move the one that is there
}

// ---- reading: the options -------------------------------------------------------------------------

TEST_F (State, OptionsAreTakenFromTheSession)
{
    options.write ({ { "Calibration", "17" }, { "Oversampling", "2" }, { "UIZoom", "0.8" } });
    restore (processor, with ({ { "Calibration", "20" }, { "Oversampling", "8" }, { "UIZoom", "0.9" } }));
    EXPECT_DOUBLE_EQ (gainOf (20.0), record.calibrationGain);
    EXPECT_EQ (8, processor.oversamplingRequested);
    EXPECT_EQ (52, processor.getLatencySamples());
    EXPECT_EQ (0.9f, processor.uiZoom);
    EXPECT_DOUBLE_EQ (gainOf (20.0), followed (processor).bandGroups[0].compressor.calibrationGain); // applied
}

TEST_F (State, OptionsThatAreMissingComeFromTheUsersFile)
{
    moveEverything();
    options.write ({ { "Calibration", "17" }, { "Oversampling", "2" }, { "UIZoom", "0.8" } });
    restore (processor, with ({ { "Mix", "0.25" } }));
    EXPECT_DOUBLE_EQ (gainOf (17.0), record.calibrationGain);
    EXPECT_EQ (2, processor.oversamplingRequested);
    EXPECT_EQ (0.8f, processor.uiZoom);
    EXPECT_DOUBLE_EQ (gainOf (17.0), followed (processor).bandGroups[2].compressor.calibrationGain);

    // Each by itself.
    restore (processor, with ({ { "Oversampling", "4" } }));
    EXPECT_DOUBLE_EQ (gainOf (17.0), record.calibrationGain);
    EXPECT_EQ (4, processor.oversamplingRequested);
    EXPECT_EQ (0.8f, processor.uiZoom);
}

TEST_F (State, OptionsOfTheUsersFileAreCheckedOnTheirWayIn)
{
    struct Case
    {
        const char *calibration, *oversampling, *zoom;
        double wantedDb;
        int wantedFactor;
        float wantedZoom;
    };

    const Case cases[] = { { "30", "17", "0.5", 22.0, 1, 0.7f },   { "16", "16", "0.7", 16.0, 16, 0.7f },
                           { "24", "1", "1", 24.0, 1, 1.0f },      { "15.99", "0", "3", 22.0, 1, 1.0f },
                           { "24.01", "-2", "-1", 22.0, 1, 0.7f }, { "18.5", "3", "0.85", 18.5, 3, 0.85f },
                           { "abc", "abc", "abc", 22.0, 1, 0.7f }, { "nan", "99999", "0.7001", 22.0, 1, 0.7001f } };

    for (const auto& c : cases)
    {
        moveEverything();
        options.write ({ { "Calibration", c.calibration }, { "Oversampling", c.oversampling }, { "UIZoom", c.zoom } });
        restore (processor, with ({}));
        EXPECT_DOUBLE_EQ (gainOf (c.wantedDb), record.calibrationGain) << c.calibration;
        EXPECT_EQ (c.wantedFactor, processor.oversamplingRequested) << c.oversampling;
        EXPECT_FLOAT_EQ (c.wantedZoom, processor.uiZoom) << c.zoom;
    }
}

TEST_F (State, OptionsWithoutAFileAreTheUsualOnes)
{
    for (const auto* text : { "", "this is no settings file", "<PROPERTIES><VALUE name=\"Calib" })
    {
        moveEverything();
        std::filesystem::remove_all (options.folder());

        if (*text != 0)
            options.writeText (text);

        restore (processor, with ({}));
        EXPECT_DOUBLE_EQ (gainOf (22.0), record.calibrationGain) << text;
        EXPECT_EQ (1, processor.oversamplingRequested) << text;
        EXPECT_EQ (0, processor.getLatencySamples()) << text;
        EXPECT_EQ (1.0f, processor.uiZoom) << text;
    }
}

TEST_F (State, RestoringNeverWritesTheUsersFile)
{
    restore (processor, with ({ { "Calibration", "20" }, { "Oversampling", "8" }, { "UIZoom", "0.9" } }));
    saved (processor);
    EXPECT_FALSE (std::filesystem::exists (options.folder()));

    options.write ({ { "Calibration", "17" } });
    const auto before = options.read();
    const auto time = std::filesystem::last_write_time (options.file());
    {
        CorvaneQ7AudioProcessor other; // a destructor may not write either
        restore (other, with ({ { "Calibration", "20" }, { "Oversampling", "8" } }));
        restore (other, with ({}));
    }
    EXPECT_EQ (before, options.read());
    EXPECT_EQ (time, std::filesystem::last_write_time (options.file()));
}

TEST_F (State, ACalibrationIsNotCheckedAgainstARange)
{
    for (const auto db : { 30.0, 15.5, 0.0, -40.0, 60.0, 20.25 })
    {
        restore (processor, with ({ { "Calibration", std::to_string (db).c_str() } }));
        EXPECT_DOUBLE_EQ (gainOf (db), record.calibrationGain);
    }

    for (const auto* text : { "-100", "-100.5", "-200" })
    {
        restore (processor, with ({ { "Calibration", text } }));
        EXPECT_EQ (0.0, record.calibrationGain) << text;
    }
}

TEST_F (State, AnOversamplingFactorIsReadAsTheCLibraryReadsIt)
{
    const std::pair<const char*, int> cases[] = { { "8x", 8 },    { "", 0 },     { " 4", 4 },
                                                  { "\t2", 2 },   { "+16", 16 }, { "-5", -5 },
                                                  { "abc", 0 },   { "2.9", 2 },  { "0x10", 0 },
                                                  { "100", 100 }, { "1", 1 },    { "2000000000", 2000000000 } };

    for (const auto& [text, factor] : cases)
    {
        restore (processor, with ({ { "Oversampling", text } }));
        EXPECT_EQ (factor, processor.oversamplingRequested) << "\"" << text << "\"";
        EXPECT_EQ (factor >= 2 ? 52 : 0, processor.getLatencySamples()) << "\"" << text << "\"";
    }
}

TEST_F (State, AFactorBeyondTheRangeIsBuiltWithinItAndOnce)
{
    const std::pair<const char*, int> cases[] = { { "0", 0 }, { "-7", 0 }, { "100", 52 }, { "2000000000", 52 } };

    for (const auto& [text, latency] : cases)
    {
        CorvaneQ7AudioProcessor instance;
        instance.setRateAndBufferSizeDetails (48000.0, 32);
        instance.prepareToPlay (48000.0, 32);
        restore (instance, with ({ { "Oversampling", text } }));

        juce::AudioBuffer<float> buffer (2, 32);
        juce::MidiBuffer midi;

        for (int block = 0; block < 4; ++block)
        {
            buffer.clear();
            buffer.setSample (0, 0, 0.5f);
            instance.processBlock (buffer, midi);

            for (int i = 0; i < 32; ++i)
                ASSERT_TRUE (std::isfinite (buffer.getSample (0, i))) << text;
        }

        EXPECT_EQ (instance.oversamplingRequested, instance.oversamplingCurrent) << text; // no rebuild in every block
        EXPECT_EQ (latency, instance.getLatencySamples()) << text;
        EXPECT_LE (instance.workBuffer.getNumSamples(), 16 * 32) << text;
    }
}

TEST_F (State, AZoomIsNotCheckedAgainstARange)
{
    for (const auto zoom : { 0.3f, 5.0f, 0.0f, -1.0f })
    {
        restore (processor, with ({ { "UIZoom", std::to_string (zoom).c_str() } }));
        EXPECT_FLOAT_EQ (zoom, processor.uiZoom);
    }
}

TEST_F (State, ANewFactorIsToldAfterAllIsStored)
{
    Expected::Listener listener (processor);
    std::vector<int> factors, latencies;
    listener.onChange = [&] (const auto&)
    {
        factors.push_back (processor.oversamplingRequested);
        latencies.push_back (processor.getLatencySamples());
        EXPECT_EQ (0.25, record.mix); // controls and calibration came before
        EXPECT_DOUBLE_EQ (gainOf (18.0), record.calibrationGain);
    };

    const auto session = [] (const char* factor) {
        return with ({ { "Mix", "0.25" }, { "Calibration", "18" }, { "Oversampling", factor } });
    };

    restore (processor, session ("8")); // a new latency is told by itself, then the change once more
    EXPECT_EQ ((std::vector<int> { 8, 8 }), factors);
    EXPECT_EQ ((std::vector<int> { 52, 52 }), latencies);
    ASSERT_EQ (2u, listener.changes.size());
    EXPECT_TRUE (listener.changes[0].latencyChanged);
    EXPECT_TRUE (listener.changes[1].nonParameterStateChanged);

    restore (processor, session ("4")); // the latency stays
    EXPECT_EQ ((std::vector<int> { 8, 8, 4 }), factors);
    EXPECT_EQ (52, latencies.back());

    restore (processor, session ("4")); // no change, no word
    EXPECT_EQ (3u, factors.size());

    restore (processor, session ("1"));
    EXPECT_EQ ((std::vector<int> { 8, 8, 4, 1, 1 }), factors);
    EXPECT_EQ (0, latencies.back());
    EXPECT_TRUE (listener.moves.empty()); // oversampling is no parameter
}

TEST_F (State, AHostMayPrepareAnewWithinTheNotice)
{
    processor.setRateAndBufferSizeDetails (48000.0, 64);
    processor.prepareToPlay (48000.0, 64);
    Expected::Listener listener (processor);
    listener.onChange = [&] (const auto&) { processor.prepareToPlay (48000.0, 64); };
    restore (processor, with ({ { "Oversampling", "4" } }));
    EXPECT_EQ (4, processor.oversamplingCurrent);
    EXPECT_EQ (256, processor.workBuffer.getNumSamples());
}

// ---- reading: presets -----------------------------------------------------------------------------

TEST_F (State, APresetLeavesTheOptionsAlone)
{
    options.write ({ { "Calibration", "17" }, { "Oversampling", "2" }, { "UIZoom", "0.8" } });

    for (const auto* text : { "1", "t", "T", "y", "Y", "true", "TRUE", "yes", "12", "  1", " true" })
    {
        moveEverything();
        const auto calibration = record.calibrationGain;
        Expected::Listener listener (processor);
        restore (processor, with ({ { "Mix", "0.25" },
                                    { "IsPreset", text },
                                    { "Calibration", "20" },
                                    { "Oversampling", "8" },
                                    { "UIZoom", "0.9" } }));
        EXPECT_EQ (0.25, record.mix) << text;
        EXPECT_EQ (calibration, record.calibrationGain) << text;
        EXPECT_EQ (4, processor.oversamplingRequested) << text;
        EXPECT_EQ (0.75f, processor.uiZoom) << text;
        EXPECT_TRUE (listener.changes.empty()) << text;
        EXPECT_FALSE (processor.freshInstance);
    }
}

TEST_F (State, WhatIsNoPresetBringsTheOptions)
{
    for (const auto* text : { "0", "", "f", "n", "false", "on", "x1", "-1", " 0" })
    {
        moveEverything();
        restore (
            processor,
            with ({ { "IsPreset", text }, { "Calibration", "20" }, { "Oversampling", "8" }, { "UIZoom", "0.9" } }));
        EXPECT_DOUBLE_EQ (gainOf (20.0), record.calibrationGain) << text;
        EXPECT_EQ (8, processor.oversamplingRequested) << text;
        EXPECT_EQ (0.9f, processor.uiZoom) << text;
    }
}

TEST_F (State, IsNeverWrittenAsAPreset)
{
    restore (processor, with ({ { "IsPreset", "1" } }));
    EXPECT_EQ (std::string::npos, saved (processor).find ("IsPreset"));
}

TEST (StateOptions, ACalibrationThatIsNoNumberIsPassedOver)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCalibration (18.0);
    const auto gain = processor.activeSettings().calibrationGain;

    for (const auto* text : { "nan", "NaN", "inf", "1e400", "500" })
    {
        StateBlocks::restore (processor, StateBlocks::with ({ { "Calibration", text } }));
        EXPECT_EQ (gain, processor.activeSettings().calibrationGain) << text;
    }

    // A level at which nothing is left, on the other hand, is one.
    StateBlocks::restore (processor, StateBlocks::with ({ { "Calibration", "-100" } }));
    EXPECT_EQ (0.0, processor.activeSettings().calibrationGain);
}
