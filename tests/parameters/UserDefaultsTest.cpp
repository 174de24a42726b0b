// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/UserDefaults.h"

#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Followed.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
struct Calibration
{
    int db;
    double gain; // 1.1523716865 * 10^(dB / 20), worked out to 17 digits by decimal arithmetic
};

// clang-format off
constexpr Calibration calibrations[] = {
    { 16, 7.270973791682018 }, { 17, 8.158166775013144 }, { 18, 9.153613674837881 },
    { 19, 10.270523466718915 }, { 20, 11.523716865000000 }, { 21, 12.929822984680768 },
    { 22, 14.507499999669515 }, { 23, 16.277682725414924 }, { 24, 18.263860411187824 }
};
// clang-format on
} // namespace

TEST (UserDefaults, EachCalibrationHasItsGain)
{
    // A few units of the last place: the power, the product and the constant each round once.
    for (const auto& calibration : calibrations)
        EXPECT_NEAR (calibration.gain, UserDefaults::calibrationGainFor (calibration.db), calibration.gain * 1.0e-15)
            << calibration.db;
}

TEST (UserDefaults, ThePowerIsTakenOfDecibelsTimesATwentieth)
{
    // dB / 20 rounds differently for some of the nine, and a calibration has to read the same everywhere.
    for (const auto& calibration : calibrations)
        EXPECT_EQ (1.1523716865 * std::pow (10.0, calibration.db * 0.05),
                   UserDefaults::calibrationGainFor (calibration.db))
            << calibration.db;
}

TEST (UserDefaults, ASampleAtTheReferenceEntersTheCircuitTheSameAtEveryCalibration)
{
    for (const auto& calibration : calibrations)
        EXPECT_NEAR (1.1523716865,
                     UserDefaults::calibrationGainFor (calibration.db) * std::pow (10.0, -calibration.db / 20.0),
                     1.0e-14)
            << calibration.db;
}

TEST (UserDefaults, TheUsualCalibrationIsThatOfANewRecord)
{
    EXPECT_EQ (22.0, UserDefaults::defaultCalibrationDb);
    EXPECT_NEAR (14.5075, UserDefaults::calibrationGainFor (22.0), 5.0e-5); // the record holds four decimals
}

TEST (UserDefaults, MinusAHundredDecibelsIsNoGain)
{
    EXPECT_EQ (0.0, UserDefaults::calibrationGainFor (-100.0));
    EXPECT_EQ (0.0, UserDefaults::calibrationGainFor (-200.0));
    EXPECT_GT (UserDefaults::calibrationGainFor (-99.0), 0.0);
}

TEST (UserDefaults, AGainLeadsBackToItsWholeDecibels)
{
    for (const auto& calibration : calibrations)
        EXPECT_EQ (calibration.db, UserDefaults::calibrationDbFor (calibration.gain));

    EXPECT_EQ (22, UserDefaults::calibrationDbFor (14.5075)) << "the rounded gain of a new record";
    EXPECT_EQ (22, UserDefaults::calibrationDbFor (UserDefaults::calibrationGainFor (22.4)));
    EXPECT_EQ (23, UserDefaults::calibrationDbFor (UserDefaults::calibrationGainFor (22.6)));
}

TEST (UserDefaults, ACalibrationReachesTheActiveSlotAlone)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCalibration (18.0);

    EXPECT_EQ (UserDefaults::calibrationGainFor (18.0), processor.settingsSlots[0].calibrationGain);
    EXPECT_EQ (14.5075, processor.settingsSlots[1].calibrationGain);

    processor.activeSlot = 1;
    processor.setCalibration (24.0);

    EXPECT_EQ (UserDefaults::calibrationGainFor (18.0), processor.settingsSlots[0].calibrationGain);
    EXPECT_EQ (UserDefaults::calibrationGainFor (24.0), processor.settingsSlots[1].calibrationGain);
}

TEST (UserDefaults, ACalibrationReachesTheBands)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCalibration (18.0);

    for (const auto& group : followed (processor).bandGroups)
        EXPECT_EQ (UserDefaults::calibrationGainFor (18.0), group.compressor.calibrationGain);
}
