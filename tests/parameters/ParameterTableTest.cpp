// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/ParameterTable.h"

#include "ExpectedParameters.h"
#include "parameters/BandParameters.h"
#include "parameters/GlobalParameters.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
using WrapperType = juce::AudioProcessor::WrapperType;

/** True when the object is of the leaf class and of its base. */
template <typename LeafClass, typename Base>
bool isLeaf (const juce::AudioProcessorParameter* parameter)
{
    return dynamic_cast<const LeafClass*> (parameter) != nullptr && dynamic_cast<const Base*> (parameter) != nullptr;
}

using ClassCheck = bool (*) (const juce::AudioProcessorParameter*);

using Meters = EnumParam<MeterValues, 3>;
using Ratios = EnumParam<RatioValues, 5>;
using Attacks = EnumParam<AttackValues, 4>;
using Recoveries = EnumParam<RecoveryValues, 5>;
using MidSides = DoubleParameter<MidSideParameterInfos>;
using LowGains = DoubleParameter<LowGainParameterInfos>;
using HighMidGains = DoubleParameter<HighMidGainParameterInfos>;

// clang-format off
constexpr ClassCheck classChecks[] = {
    isLeaf<LowMeterParameter, Meters>,
    isLeaf<LowInParameter, OnOffParameter>,
    isLeaf<LowSoloParameter, OnOffParameter>,
    isLeaf<LowMidSideParameter, MidSides>,
    isLeaf<LowGainParameter, LowGains>,
    isLeaf<LowRatioParameter, Ratios>,
    isLeaf<LowThresholdParameter, DoubleParameter<LowThresholdParameterInfos>>,
    isLeaf<LowAttackParameter, Attacks>,
    isLeaf<LowRecoveryParameter, Recoveries>,
    isLeaf<MidMeterParameter, Meters>,
    isLeaf<MidInParameter, OnOffParameter>,
    isLeaf<MidSoloParameter, OnOffParameter>,
    isLeaf<MidMidSideParameter, MidSides>,
    isLeaf<MidGainParameter, HighMidGains>,
    isLeaf<MidRatioParameter, Ratios>,
    isLeaf<MidThresholdParameter, DoubleParameter<MidThresholdParameterInfos>>,
    isLeaf<MidAttackParameter, Attacks>,
    isLeaf<MidRecoveryParameter, Recoveries>,
    isLeaf<HighMeterParameter, Meters>,
    isLeaf<HighInParameter, OnOffParameter>,
    isLeaf<HighSoloParameter, OnOffParameter>,
    isLeaf<HighMidSideParameter, MidSides>,
    isLeaf<HighGainParameter, HighMidGains>,
    isLeaf<HighRatioParameter, Ratios>,
    isLeaf<HighThresholdParameter, DoubleParameter<HighThresholdParameterInfos>>,
    isLeaf<HighAttackParameter, Attacks>,
    isLeaf<HighRecoveryParameter, Recoveries>,
    isLeaf<MixParameter, DoubleParameter<MixParameterInfos>>,
    isLeaf<HPFParameter, CorvaneQ7Param>,
    isLeaf<MasterGainParameter, DoubleParameter<MasterGainParameterInfos>>,
    isLeaf<LowXOverParameter, juce::AudioProcessorParameter>,
    isLeaf<HighXOverParameter, juce::AudioProcessorParameter>,
    isLeaf<NukeParameter, OnOffParameter>,
    isLeaf<NiveauParameter, OnOffParameter>,
    isLeaf<LinkParameter, OnOffParameter>,
    isLeaf<BypassParameter, juce::AudioProcessorParameter>,
    isLeaf<InLevelParameter, DoubleParameter<InLevelParameterInfos>>,
    isLeaf<OutLevelParameter, DoubleParameter<OutLevelParameterInfos>>
};
// clang-format on

static_assert (std::size (classChecks) == Expected::numParameters);
} // namespace

class ParameterTableRow : public ::testing::TestWithParam<Expected::Parameter>
{
protected:
    CorvaneQ7AudioProcessor processor;
    const Expected::Parameter& expected = GetParam();
    juce::AudioProcessorParameter& parameter = *processor.getParameters()[expected.index];
};

TEST_P (ParameterTableRow, StandsAtItsIndexWithItsIdentifierAndName)
{
    EXPECT_EQ (expected.index, parameter.getParameterIndex());
    EXPECT_STREQ (expected.identifier, ParameterTable::rows[expected.index].identifier);
    EXPECT_EQ (expected.index, ParameterTable::indexOf (expected.identifier));
    EXPECT_EQ (juce::String (expected.name), processor.getParameterName (expected.index));

    const auto* withId = dynamic_cast<juce::AudioProcessorParameterWithID*> (&parameter);
    ASSERT_NE (nullptr, withId);
    EXPECT_EQ (juce::String (expected.identifier), withId->paramID); // what newer wrappers store
}

TEST_P (ParameterTableRow, GivesItsNameUncutForAnyLength)
{
    for (const auto length : { -1, 0, 1, 3, 8, 19, 1024, std::numeric_limits<int>::max() })
        EXPECT_EQ (juce::String (expected.name), parameter.getName (length)) << "asked for " << length;
}

TEST_P (ParameterTableRow, HasItsDefaultToTheLastBitAndShowsIt)
{
    EXPECT_TRUE (Expected::sameBits (expected.defaultValue, parameter.getDefaultValue()))
        << expected.defaultValue << " against " << parameter.getDefaultValue();
    EXPECT_TRUE (Expected::sameBits (expected.defaultValue, processor.getParameterDefaultValue (expected.index)));
    EXPECT_EQ (juce::String (expected.defaultText), parameter.getText (parameter.getDefaultValue(), 1024));
}

TEST_P (ParameterTableRow, TellsItsStepsAndWhetherTheyAreFew)
{
    EXPECT_EQ (expected.steps, parameter.getNumSteps());
    EXPECT_EQ (expected.steps, processor.getParameterNumSteps (expected.index));
    EXPECT_EQ (expected.steps != Expected::continuous, parameter.isDiscrete());
    EXPECT_EQ (expected.steps == 2, parameter.isBoolean());
}

TEST_P (ParameterTableRow, TellsTheHostWhatItIs)
{
    EXPECT_EQ (expected.meta, parameter.isMetaParameter());
    EXPECT_EQ (expected.meta, processor.isMetaParameter (expected.index));
    EXPECT_TRUE (parameter.isAutomatable());
    EXPECT_FALSE (parameter.isOrientationInverted());
    EXPECT_EQ (juce::String(), parameter.getLabel()); // the unit lives in the text
    EXPECT_EQ (juce::AudioProcessorParameter::genericParameter, parameter.getCategory());
}

TEST_P (ParameterTableRow, IsOfItsClassAndFamily)
{
    EXPECT_TRUE (classChecks[expected.index](&parameter));

    // The crossovers and Bypass stand beside the family: they have no name field of its own.
    const auto inFamily = expected.kind != Expected::Kind::lowXOver && expected.kind != Expected::Kind::highXOver
                          && expected.kind != Expected::Kind::bypass;
    EXPECT_EQ (inFamily, dynamic_cast<CorvaneQ7Param*> (&parameter) != nullptr);
    EXPECT_EQ (expected.kind == Expected::Kind::onOff, dynamic_cast<OnOffParameter*> (&parameter) != nullptr);
}

INSTANTIATE_TEST_SUITE_P (All, ParameterTableRow, ::testing::ValuesIn (Expected::parameters),
                          [] (const auto& row) { return std::string (row.param.identifier); });

TEST (ParameterTable, HasTheExpectedControlsAndNoMore)
{
    CorvaneQ7AudioProcessor processor;
    EXPECT_EQ (Expected::numParameters, processor.getParameters().size());
    EXPECT_EQ (Expected::numParameters, processor.getNumParameters());
    EXPECT_EQ (Expected::numParameters, ParameterTable::numParameters);
    EXPECT_EQ (nullptr, processor.getBypassParameter()); // the host's own bypass stays its own
}

TEST (ParameterTable, FindsNoIndexForAForeignIdentifier)
{
    for (const auto* identifier : { "", "lowgain", "LowGain ", "Version", "Calibration", "Low Gain" })
        EXPECT_EQ (-1, ParameterTable::indexOf (identifier)) << identifier;
}

TEST (ParameterTable, AnIndexOutsideTheListIsSafe)
{
    CorvaneQ7AudioProcessor processor;

    for (const auto index : { -1, Expected::numParameters, 1000, std::numeric_limits<int>::max() })
    {
        EXPECT_EQ (0.0f, processor.getParameter (index));
        EXPECT_EQ (juce::String(), processor.getParameterName (index));
        EXPECT_EQ (juce::String(), processor.getParameterText (index));
        EXPECT_FALSE (processor.isMetaParameter (index));
    }
}

TEST (ParameterTable, ValuesAtTheStartAreThoseOfTheDefaultProgramAndNotTheDefaults)
{
    // Gain 2 dB and Threshold -4 dB in every band; the controls' own defaults differ on purpose.
    CorvaneQ7AudioProcessor processor;

    for (const auto index : { Expected::lowGain, Expected::midGain, Expected::highGain })
    {
        EXPECT_EQ (3.0f / 21.0f, processor.getParameter (index));
        EXPECT_EQ (juce::String ("2.0dB"), processor.getParameterText (index));
        EXPECT_NE (processor.getParameterDefaultValue (index), processor.getParameter (index));
    }

    for (const auto index : { Expected::lowThreshold, Expected::midThreshold, Expected::highThreshold })
    {
        EXPECT_EQ (16.0f / 30.0f, processor.getParameter (index));
        EXPECT_EQ (juce::String ("-4.0dB"), processor.getParameterText (index));
        EXPECT_NE (processor.getParameterDefaultValue (index), processor.getParameter (index));
    }
}

TEST (ParameterTable, SiblingsAreTheSameControlOfTheOtherBandsLowestFirst)
{
    for (int control = 0; control < 9; ++control)
    {
        EXPECT_EQ ((std::array<int, 2> { control + 9, control + 18 }), ParameterTable::siblingsOf (control));
        EXPECT_EQ ((std::array<int, 2> { control, control + 18 }), ParameterTable::siblingsOf (control + 9));
        EXPECT_EQ ((std::array<int, 2> { control, control + 9 }), ParameterTable::siblingsOf (control + 18));
    }
}

TEST (ParameterTable, TheFirstTwentySevenAreBandControls)
{
    for (int index = -1; index < 40; ++index)
        EXPECT_EQ (index >= 0 && index < 27, ParameterTable::isBandControl (index)) << index;
}

class ParameterSteps : public ::testing::TestWithParam<std::pair<WrapperType, bool>>
{
};

TEST_P (ParameterSteps, AreFiniteForFrequenciesInTwoWrappersOnly)
{
    const auto processor = Expected::makeProcessor (GetParam().first);
    ASSERT_EQ (GetParam().first, processor->wrapperType);

    for (const auto& expected : Expected::parameters)
    {
        const auto finite = GetParam().second && Expected::isFrequency (expected.kind);
        EXPECT_EQ (finite ? 1001 : expected.steps, processor->getParameters()[expected.index]->getNumSteps())
            << expected.identifier;
    }
}

INSTANTIATE_TEST_SUITE_P (Wrappers, ParameterSteps,
                          ::testing::Values (std::pair { juce::AudioProcessor::wrapperType_Undefined, false },
                                             std::pair { juce::AudioProcessor::wrapperType_VST, false },
                                             std::pair { juce::AudioProcessor::wrapperType_VST3, false },
                                             std::pair { juce::AudioProcessor::wrapperType_AudioUnit, false },
                                             std::pair { juce::AudioProcessor::wrapperType_AudioUnitv3, false },
                                             std::pair { juce::AudioProcessor::wrapperType_AAX, true },
                                             std::pair { juce::AudioProcessor::wrapperType_Standalone, true },
                                             std::pair { juce::AudioProcessor::wrapperType_Unity, false },
                                             std::pair { juce::AudioProcessor::wrapperType_LV2, false }),
                          [] (const auto& row)
                          { return std::string (juce::AudioProcessor::getWrapperTypeDescription (row.param.first)); });
