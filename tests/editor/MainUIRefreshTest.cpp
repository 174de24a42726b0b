// SPDX-License-Identifier: GPL-3.0-or-later
// The record shown: what each control makes of its field.
#include "EditorFixture.h"
#include "ExpectedPanel.h"

#include <cmath>
#include <limits>

namespace
{
using namespace ExpectedPanel;

/** To the nearest of the knob's steps. */
double snapped (double value, double step) { return step > 0.0 ? step * std::floor (value / step + 0.5) : value; }

constexpr auto infinite = std::numeric_limits<double>::infinity();
constexpr auto notANumber = std::numeric_limits<double>::quiet_NaN();
} // namespace

class MainUIRefresh : public EditorTest
{
protected:
    juce::String mixText (double mix)
    {
        settings().mix = mix;
        panel().refresh();
        return panel().mixReadout->getText();
    }

    juce::String highPassText (double hz)
    {
        settings().hpfHz = hz;
        panel().refresh();
        return panel().highPassReadout->getText();
    }

    juce::String masterText (double db)
    {
        settings().masterGainDb.target = db;
        panel().refresh();
        return panel().masterReadout->getText();
    }

    double gainKnob (int bandIndex, double db)
    {
        settings().bands[bandIndex].gainDb.target = db;
        panel().refresh();
        return band (bandIndex).gain->getValue();
    }

    double thresholdKnob (int bandIndex, double db)
    {
        settings().bands[bandIndex].thresholdDb.target = db;
        panel().refresh();
        return band (bandIndex).threshold->getValue();
    }

    /** Ghost and lit text of the low display, and of the high one where they agree. */
    std::pair<juce::String, juce::String> digits (double hz)
    {
        settings().lowXOverHz = hz;
        settings().highXOverHz = hz;
        panel().refresh();
        EXPECT_EQ (panel().lowXOverGhost->getText(), panel().highXOverGhost->getText());
        EXPECT_EQ (panel().lowXOverDigits->getText(), panel().highXOverDigits->getText());
        return { panel().lowXOverGhost->getText(), panel().lowXOverDigits->getText() };
    }
};

// ---- bands -------------------------------------------------------------------------------------
TEST_F (MainUIRefresh, RowsOfTheSelectorsStandOnTheirSteps)
{
    for (int i = 0; i < numBands; ++i)
    {
        auto& record = settings().bands[i];

        for (int row = 0; row <= 4; ++row)
        {
            record.meter = std::min (row, 2);
            record.ratio = row;
            record.attack = std::min (row, 3);
            record.recovery = row;
            panel().refresh();

            EXPECT_EQ (record.meter * 0.5, band (i).meterMode->getValue());
            EXPECT_EQ (row * 0.25, band (i).ratio->getValue());
            EXPECT_EQ (row * 0.25, band (i).recovery->getValue());
            EXPECT_NEAR (record.attack * 0.3333, band (i).attack->getValue(), 1.0e-12);
        }
    }
}

TEST_F (MainUIRefresh, GainStandsOnWholeDecibels)
{
    for (int i = 0; i < numBands; ++i)
    {
        for (int db = -1; db <= 20; ++db)
        {
            const auto expected = snapped ((db + 1.0) / 21.0, 0.047619);
            EXPECT_NEAR (expected, gainKnob (i, db), 1.0e-12) << db;
            EXPECT_NEAR (expected, gainKnob (i, db + 0.49), 1.0e-12) << db;
            EXPECT_NEAR (expected, gainKnob (i, db - 0.5), 1.0e-12) << db; // a half goes up
        }

        EXPECT_EQ (0.0, gainKnob (i, -1.51));
        EXPECT_EQ (0.0, gainKnob (i, -100.0));
        EXPECT_NEAR (1.0, gainKnob (i, 100.0), 1.0e-6);
    }
}

TEST_F (MainUIRefresh, ThresholdStandsOnEvenDecibels)
{
    for (int i = 0; i < numBands; ++i)
    {
        for (int db = -20; db <= 10; db += 2)
        {
            const auto expected = snapped ((db + 20.0) / 30.0, 0.06666);
            EXPECT_NEAR (expected, thresholdKnob (i, db), 1.0e-12) << db;
            EXPECT_NEAR (expected, thresholdKnob (i, db + 0.99), 1.0e-12) << db;
            EXPECT_NEAR (expected, thresholdKnob (i, db - 1.0), 1.0e-12) << db; // the odd one goes up
        }

        EXPECT_EQ (0.0, thresholdKnob (i, -60.0));
        EXPECT_NEAR (0.9999, thresholdKnob (i, 60.0), 1.0e-9);
    }
}

TEST_F (MainUIRefresh, ReadsTargetsAndNotWhatRampsHaveReached)
{
    settings().bands[0].gainDb.target = 9.0;
    settings().bands[0].thresholdDb.target = 4.0;
    settings().masterGainDb.target = 5.0;
    settings().bypass.target = 1.0;
    panel().refresh();

    EXPECT_NEAR (snapped (10.0 / 21.0, 0.047619), band (0).gain->getValue(), 1.0e-12);
    EXPECT_NEAR (snapped (24.0 / 30.0, 0.06666), band (0).threshold->getValue(), 1.0e-12);
    EXPECT_DOUBLE_EQ (0.5, panel().master->getValue());
    EXPECT_FALSE (panel().bypassLamp->getToggleState());
}

TEST_F (MainUIRefresh, InAndSoloLampsFollowTheirBand)
{
    for (int i = 0; i < numBands; ++i)
        for (const auto in : { false, true })
            for (const auto solo : { true, false })
            {
                settings().bands[i].in = in;
                settings().bands[i].solo = solo;
                panel().refresh();
                EXPECT_EQ (in, band (i).inLamp->getToggleState());
                EXPECT_EQ (solo, band (i).soloLamp->getToggleState());
            }
}

// ---- globals -----------------------------------------------------------------------------------
TEST_F (MainUIRefresh, MixIsLimitedAndItsPercentTruncated)
{
    EXPECT_EQ (juce::String ("0 %"), mixText (0.0));
    EXPECT_EQ (0.0, panel().mix->getValue());
    EXPECT_EQ (juce::String ("50 %"), mixText (0.5));
    EXPECT_EQ (0.5, panel().mix->getValue());
    EXPECT_EQ (juce::String ("99 %"), mixText (0.9999));
    EXPECT_EQ (juce::String ("0 %"), mixText (0.00999));
    EXPECT_EQ (juce::String ("28 %"), mixText (0.2899));
    EXPECT_EQ (juce::String ("29 %"), mixText (0.2901));
    EXPECT_EQ (juce::String ("29 %"), mixText (static_cast<double> (0.29f))); // as the host's own text has it
    EXPECT_EQ (juce::String ("99 %"), mixText (static_cast<double> (0.999f)));
    EXPECT_EQ (juce::String ("100 %"), mixText (1.0));
    EXPECT_EQ (1.0, panel().mix->getValue());
    mixText (1.7);
    EXPECT_EQ (1.0, panel().mix->getValue());
    mixText (-0.3);
    EXPECT_EQ (0.0, panel().mix->getValue());
}

TEST_F (MainUIRefresh, TheHighPassIsOffAtItsLowEnd)
{
    EXPECT_EQ (juce::String ("OFF"), highPassText (20.0));
    EXPECT_EQ (0.0, panel().highPass->getValue());
    EXPECT_EQ (juce::String ("OFF"), highPassText (20.0099));
    EXPECT_EQ (juce::String ("OFF"), highPassText (std::nextafter (20.01, 0.0)));
    EXPECT_EQ (juce::String ("20 Hz"), highPassText (20.01));
    EXPECT_EQ (juce::String ("20 Hz"), highPassText (20.999));
    EXPECT_EQ (juce::String ("21 Hz"), highPassText (21.0));
    EXPECT_EQ (juce::String ("99 Hz"), highPassText (99.9999));
    EXPECT_EQ (juce::String ("500 Hz"), highPassText (500.0001));
}

TEST_F (MainUIRefresh, FrequencyKnobsAreLogarithmic)
{
    for (const auto hz : { 20.0, 50.0, 100.0, 237.0, 500.0 })
    {
        highPassText (hz);
        EXPECT_NEAR (std::min (1.0, std::log10 (hz / 20.0) / 1.3979400087), panel().highPass->getValue(), 1.0e-12);
    }

    for (const auto hz : { 50.0, 200.0, 777.0, 5000.0 })
    {
        digits (hz);
        EXPECT_NEAR (std::log10 (hz / 50.0) * 0.5, panel().lowXOver->getValue(), 1.0e-12);
    }

    for (const auto hz : { 200.0, 1000.0, 5000.0, 12000.0 })
    {
        digits (hz);
        EXPECT_NEAR (std::log10 (hz / 200.0) / 1.778151250383644, panel().highXOver->getValue(), 1.0e-12);
    }

    digits (10.0);
    EXPECT_EQ (0.0, panel().lowXOver->getValue());
    digits (90000.0);
    EXPECT_EQ (1.0, panel().highXOver->getValue());
}

TEST_F (MainUIRefresh, MasterHasOneDecimal)
{
    EXPECT_EQ (juce::String ("0.0 dB"), masterText (0.0));
    EXPECT_DOUBLE_EQ (1.0 / 3.0, panel().master->getValue());
    EXPECT_EQ (juce::String ("-10.0 dB"), masterText (-10.0));
    EXPECT_EQ (0.0, panel().master->getValue());
    EXPECT_EQ (juce::String ("20.0 dB"), masterText (20.0));
    EXPECT_EQ (1.0, panel().master->getValue());
    EXPECT_EQ (juce::String ("3.1 dB"), masterText (3.14159));
    EXPECT_DOUBLE_EQ (13.14159 / 30.0, panel().master->getValue());
    EXPECT_EQ (juce::String ("-0.7 dB"), masterText (-0.651));
    EXPECT_EQ (juce::String ("25.0 dB"), masterText (25.0));
    EXPECT_EQ (1.0, panel().master->getValue());
    masterText (-40.0);
    EXPECT_EQ (0.0, panel().master->getValue());
}

TEST_F (MainUIRefresh, FeatureLampsAndTheBypassSwitch)
{
    for (const auto on : { true, false, true })
    {
        settings().nuke = on;
        settings().niveau = ! on;
        settings().link = on;
        settings().bypass.target = on ? 1.0 : 0.0;
        panel().refresh();
        EXPECT_EQ (on, panel().nukeLamp->getToggleState());
        EXPECT_EQ (! on, panel().niveauLamp->getToggleState());
        EXPECT_EQ (on, panel().linkLamp->getToggleState());
        EXPECT_EQ (! on, panel().bypassLamp->getToggleState());
        EXPECT_EQ (! on, panel().bypassSwitch->getToggleState());
    }

    settings().bypass.target = 0.49;
    panel().refresh();
    EXPECT_TRUE (panel().bypassLamp->getToggleState());
    settings().bypass.target = 0.5;
    panel().refresh();
    EXPECT_FALSE (panel().bypassLamp->getToggleState());
}

TEST_F (MainUIRefresh, TheSixKeysKeepTheirOwnToggleState)
{
    settings().nuke = true;
    settings().bands[0].solo = true;
    settings().bands[0].midSide = 1.0;
    panel().refresh();
    EXPECT_FALSE (panel().nukeButton->getToggleState());
    EXPECT_FALSE (band (0).soloButton->getToggleState());
    EXPECT_FALSE (band (0).midSideButton->getToggleState());
    EXPECT_FALSE (band (0).inButton->getToggleState());
}

// ---- digits ------------------------------------------------------------------------------------
TEST_F (MainUIRefresh, DigitsChooseTheirFormBeforeTheyAreRounded)
{
    using Pair = std::pair<juce::String, juce::String>;
    EXPECT_EQ ((Pair { "888", "50" }), digits (50.0));
    EXPECT_EQ ((Pair { "888", "200" }), digits (200.0));
    EXPECT_EQ ((Pair { "888", "200" }), digits (199.5)); // rounded by adding a half
    EXPECT_EQ ((Pair { "888", "199" }), digits (199.49));
    EXPECT_EQ ((Pair { "888", "999" }), digits (999.4));
    EXPECT_EQ ((Pair { "888", "1000" }), digits (999.6));
    EXPECT_EQ ((Pair { "8.88", "1.00" }), digits (1000.0));
    EXPECT_EQ ((Pair { "8.88", "1.23" }), digits (1234.0));
    EXPECT_EQ ((Pair { "8.88", "5.00" }), digits (5000.0));
    EXPECT_EQ ((Pair { "8.88", "9.00" }), digits (8999.0));
    EXPECT_EQ ((Pair { "88.8", "9.0" }), digits (9000.0));
    EXPECT_EQ ((Pair { "88.8", "9.9" }), digits (9940.0));
    EXPECT_EQ ((Pair { "88.8", "10.0" }), digits (9960.0));
    EXPECT_EQ ((Pair { "88.8", "12.0" }), digits (12000.0));
}

TEST_F (MainUIRefresh, DigitsTellNobody)
{
    struct Listener : juce::Label::Listener
    {
        void labelTextChanged (juce::Label*) override { ++calls; }
        int calls = 0;
    } listener;

    panel().lowXOverDigits->addListener (&listener);
    panel().lowXOverGhost->addListener (&listener);
    digits (9000.0);
    Mouse::dispatchMessages();
    EXPECT_EQ (0, listener.calls);
    panel().lowXOverDigits->removeListener (&listener);
    panel().lowXOverGhost->removeListener (&listener);
}

TEST_F (MainUIRefresh, GhostsStartWithAllSegmentsAndFollowTheFirstRefresh)
{
    juce::Label ghost, lit;
    MainUI::setDigits (440.0, ghost, lit);
    EXPECT_EQ (juce::String ("888"), ghost.getText());
    EXPECT_EQ (juce::String ("440"), lit.getText());

    MainUI unseen (processor);
    EXPECT_EQ (juce::String ("8888"), unseen.lowXOverGhost->getText());
    EXPECT_EQ (juce::String ("8888"), unseen.highXOverGhost->getText());
}

// ---- mid and side ------------------------------------------------------------------------------
TEST_F (MainUIRefresh, MidSideLampsTellTheirThreeStates)
{
    EXPECT_TRUE (panel().stereoShown);

    for (int i = 0; i < numBands; ++i)
        for (const auto value : { 0.0, 0.5, 1.0, 0.25, 0.999, 0.5 })
        {
            settings().bands[i].midSide = value;
            panel().refresh();
            EXPECT_EQ (value == 0.0, band (i).midLamp->getToggleState()) << value;
            EXPECT_EQ (value == 1.0, band (i).sideLamp->getToggleState()) << value;
        }
}

TEST_F (MainUIRefresh, TheMidSideControlsComeAndGoWithTheChannels)
{
    const auto expectShown = [this] (bool shown)
    {
        EXPECT_EQ (shown, panel().stereoShown);

        for (auto& each : panel().bands)
            for (auto* widget : std::initializer_list<juce::Component*> { each.midSideButton.get(), each.midLamp.get(),
                                                                          each.sideLamp.get(), each.midLabel.get(),
                                                                          each.sideLabel.get() })
                EXPECT_EQ (shown, widget->isVisible());
    };

    for (const auto channels : { 1, 2, 0, 2, 4, 2, 1 })
    {
        processor.setPlayConfigDetails (channels, channels, 48000.0, 512);
        ASSERT_EQ (channels, processor.getTotalNumInputChannels());
        panel().refresh();
        expectShown (channels == 2);
    }

    for (auto* child : panel().getChildren())
    {
        const auto isOfBothKinds =
            dynamic_cast<NVXSlider*> (child) != nullptr || dynamic_cast<VertMeter*> (child) != nullptr;
        EXPECT_TRUE (! isOfBothKinds || child->isVisible());
    }
}

TEST_F (MonoEditorTest, ShowsNoMidAndNoSide)
{
    EXPECT_FALSE (panel().stereoShown);

    for (int i = 0; i < numBands; ++i)
    {
        settings().bands[i].midSide = i == 0 ? 0.0 : 1.0;
        panel().refresh();

        for (auto* widget : std::initializer_list<juce::Component*> {
                 band (i).midSideButton.get(), band (i).midLamp.get(), band (i).sideLamp.get(), band (i).midLabel.get(),
                 band (i).sideLabel.get() })
        {
            EXPECT_FALSE (widget->isVisible());
            EXPECT_NE (widget, panel().getComponentAt (widget->getBounds().getCentre()));
        }

        EXPECT_FALSE (band (i).midLamp->getToggleState());
        EXPECT_FALSE (band (i).sideLamp->getToggleState());
    }
}

// ---- manners -----------------------------------------------------------------------------------
TEST_F (MainUIRefresh, ReadsTheAudibleSlot)
{
    processor.settingsSlots[1].bands[2].ratio = 4;
    panel().refresh();
    EXPECT_EQ (0.5, band (2).ratio->getValue());
    processor.activeSlot = 1;
    panel().refresh();
    EXPECT_EQ (1.0, band (2).ratio->getValue());
}

TEST_F (MainUIRefresh, ShowsAutomationOfEveryParameterWithoutAWordToTheHost)
{
    HostLog host (processor);

    for (const auto value : { 0.0f, 1.0f, 0.4f })
    {
        for (int i = 0; i < 38; ++i)
            automate (i, i == 34 ? 0.0f : value); // Link off: each by itself

        panel().refresh();
        Mouse::dispatchMessages(); // nor later

        for (const auto& [knob, travel, parameter] : knobsOf (panel()))
            EXPECT_NEAR (snapped (valueOf (parameter), travel.step), knob->getValue(), 1.1e-6) << parameter;

        for (int i = 0; i < numBands; ++i)
        {
            EXPECT_EQ (value >= 0.5f, band (i).inLamp->getToggleState());
            EXPECT_EQ (value >= 0.5f, band (i).soloLamp->getToggleState());
            EXPECT_EQ (value == 1.0f, band (i).sideLamp->getToggleState());
        }

        EXPECT_EQ (value >= 0.5f, panel().nukeLamp->getToggleState());
        EXPECT_EQ (value < 0.5f, panel().bypassLamp->getToggleState());
    }

    EXPECT_TRUE (host.words.empty());
}

TEST_F (MainUIRefresh, AgainAndAgainItRepaintsNothing)
{
    panel().refresh();
    const RepaintLog log (panel());
    panel().refresh();
    EXPECT_TRUE (log.areas.isEmpty());
}

TEST_F (MainUIRefresh, NoRecordMakesItFall)
{
    for (const auto value : { infinite, -infinite, notANumber, 1.0e300, -1.0e300, 0.0, -1.0 })
    {
        auto& record = settings();
        record.mix = record.hpfHz = record.lowXOverHz = record.highXOverHz = value;
        record.masterGainDb.target = record.bypass.target = value;

        for (auto& each : record.bands)
        {
            each.gainDb.target = each.thresholdDb.target = each.midSide = value;
            each.ratio = each.attack = each.recovery = each.meter = 2000000000;
        }

        panel().refresh();
        panel().updateMeters();
        painted (panel());
    }

    settings() = ChannelSettings (processor);
    panel().refresh();
    EXPECT_EQ (0.5, band (0).ratio->getValue());
    EXPECT_EQ (1.0, panel().mix->getValue());
    EXPECT_DOUBLE_EQ (1.0 / 3.0, panel().master->getValue());
    EXPECT_EQ (0.0, panel().highPass->getValue());
}

// ---- meters ------------------------------------------------------------------------------------
class MainUIMeters : public EditorTest
{
protected:
    MainUIMeters()
    {
        now = 5000;

        for (auto& each : panel().bands)
        {
            each.meter->millisecondCounter = []() noexcept { return std::uint32_t { now }; };
            each.meter->lastTime = now;
            each.meter->position = 0.0f;
            each.meter->velocity = 0.0f;
        }
    }

    void settle()
    {
        for (int i = 0; i < 200; ++i)
        {
            now += 50;
            panel().updateMeters();
        }
    }

    inline static juce::uint32 now;
};

TEST_F (MainUIMeters, ControlShowsTheBandsReductionAndInAndOutItsLevel)
{
    auto& record = settings();
    record.lowLevel = 1.0;           // 0 dB: 0.5
    record.midLevel = 0.5011872336;  // -6 dB: 0.3
    record.highLevel = 1.9952623150; // +6 dB: 0.7
    record.lowGainReduction = 0.5;   // (0.5 * -1.3 + 1.19) * 0.9 + 0.05
    record.midGainReduction = 0.8;
    record.highGainReduction = 0.1;

    const float levels[] { 0.5f, 0.3f, 0.7f };
    const float reductions[] { 0.536f, 0.185f, 0.95f };

    for (const auto mode : { 1, 0, 2, 1 })
    {
        for (auto& each : record.bands)
            each.meter = mode;

        settle();

        for (int i = 0; i < numBands; ++i)
            EXPECT_NEAR (mode == 1 ? reductions[i] : levels[i], band (i).meter->position, 1.0e-4) << mode << " " << i;
    }

    record.bands[0].meter = 0;
    record.bands[1].meter = 1;
    record.bands[2].meter = 2;
    settle();
    EXPECT_NEAR (0.5, band (0).meter->position, 1.0e-4);
    EXPECT_NEAR (0.185, band (1).meter->position, 1.0e-4);
    EXPECT_NEAR (0.7, band (2).meter->position, 1.0e-4);
}

TEST_F (MainUIMeters, RunOnceAsSoonAsThePanelIsSeen)
{
    settings().lowGainReduction = 0.1;
    panel().setVisible (false);
    now += 50;
    panel().setVisible (true);
    EXPECT_NEAR (0.09, band (0).meter->position, 1.0e-6);
}
