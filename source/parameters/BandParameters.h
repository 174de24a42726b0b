// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/DoubleParameter.h"
#include "parameters/EnumParam.h"
#include "parameters/EnumValues.h"
#include "parameters/OnOffParameter.h"

/** The nine controls of a band, once for each: 0 low, 1 mid, 2 high. The same control of the three bands differs in
    its default alone. */
template <int b>
class MeterParameter final : public EnumParam<MeterValues, 3>
{
public:
    using EnumParam::EnumParam;
    float getValue() const override { return toNormalised (settings->bands[b].meter); }
    float getDefaultValue() const override { return 0.5f; }
    bool isMetaParameter() const override { return true; }

private:
    void store (float x) noexcept override { settings->bands[b].meter = toRow (x); }
};

template <int b>
class InParameter final : public OnOffParameter
{
public:
    using OnOffParameter::OnOffParameter;
    float getValue() const override { return settings->bands[b].in ? 1.0f : 0.0f; }
    float getDefaultValue() const override { return 1.0f; }
    bool isMetaParameter() const override { return true; }

private:
    void store (float x) noexcept override { settings->bands[b].in = x >= 0.5f; }
};

template <int b>
class SoloParameter final : public OnOffParameter
{
public:
    using OnOffParameter::OnOffParameter;
    float getValue() const override { return settings->bands[b].solo ? 1.0f : 0.0f; }
    float getDefaultValue() const override { return 0.0f; }
    bool isMetaParameter() const override { return true; }

private:
    void store (float x) noexcept override { settings->bands[b].solo = x >= 0.5f; }
};

template <int b>
class MidSideParameter final : public DoubleParameter<MidSideParameterInfos>
{
public:
    using DoubleParameter::DoubleParameter;
    float getValue() const override { return toNormalised (settings->bands[b].midSide); }

    juce::String getText (float x, int) const override { return x < 0.25f ? "Mid" : (x >= 0.75f ? "Side" : "Off"); }

    float getValueForText (const juce::String& text) const override
    {
        return text.containsWholeWordIgnoreCase ("Mid") ? 0.0f
                                                        : (text.containsWholeWordIgnoreCase ("Side") ? 1.0f : 0.5f);
    }

private:
    void store (float x) noexcept override { settings->bands[b].midSide = toValue (x); }
};

/** The lowest position is "auto": make-up that follows the gain reduction. */
template <typename Infos>
class GainParameterBase : public DoubleParameter<Infos>
{
public:
    using DoubleParameter<Infos>::DoubleParameter;

    juce::String getText (float x, int length) const override
    {
        constexpr float zeroDb = 0.04761905f; // as a float: in double, 0 dB itself would show "auto"
        return x < zeroDb ? juce::String ("auto") : DoubleParameter<Infos>::getText (x, length);
    }

    float getValueForText (const juce::String& text) const override
    {
        return text == "auto" ? 0.0f : DoubleParameter<Infos>::getValueForText (text);
    }
};

template <int b>
using GainInfosOf = std::conditional_t<b == 0, LowGainParameterInfos, HighMidGainParameterInfos>;

template <int b>
class GainParameter final : public GainParameterBase<GainInfosOf<b>>
{
public:
    using GainParameterBase<GainInfosOf<b>>::GainParameterBase;
    float getValue() const override { return this->toNormalised (this->settings->bands[b].gainDb.target); }

private:
    void store (float x) noexcept override
    {
        auto& band = this->settings->bands[b];
        ChannelSettings::setDecibels (band.gainDb, band.gainLinear, this->toValue (x));
    }
};

template <int b>
class RatioParameter final : public EnumParam<RatioValues, 5>
{
public:
    using EnumParam::EnumParam;
    float getValue() const override { return toNormalised (settings->bands[b].ratio); }
    float getDefaultValue() const override { return 0.5f; }
    bool isMetaParameter() const override { return true; }

private:
    void store (float x) noexcept override { settings->bands[b].ratio = toRow (x); }
};

template <int b>
using ThresholdInfosOf =
    std::conditional_t<b == 0, LowThresholdParameterInfos,
                       std::conditional_t<b == 1, MidThresholdParameterInfos, HighThresholdParameterInfos>>;

template <int b>
class ThresholdParameter final : public DoubleParameter<ThresholdInfosOf<b>>
{
public:
    using DoubleParameter<ThresholdInfosOf<b>>::DoubleParameter;
    float getValue() const override { return this->toNormalised (this->settings->bands[b].thresholdDb.target); }

private:
    void store (float x) noexcept override
    {
        auto& band = this->settings->bands[b];
        ChannelSettings::setDecibels (band.thresholdDb, band.thresholdLinear, this->toValue (x));
    }
};

template <int b>
class AttackParameter final : public EnumParam<AttackValues, 4>
{
public:
    using EnumParam::EnumParam;
    float getValue() const override { return toNormalised (settings->bands[b].attack); }
    float getDefaultValue() const override { return static_cast<float> (2.0 / 3.0); }
    bool isMetaParameter() const override { return true; }

private:
    void store (float x) noexcept override { settings->bands[b].attack = toRow (x); }
};

template <int b>
class RecoveryParameter final : public EnumParam<RecoveryValues, 5>
{
public:
    using EnumParam::EnumParam;
    float getValue() const override { return toNormalised (settings->bands[b].recovery); }
    float getDefaultValue() const override { return 1.0f; }
    bool isMetaParameter() const override { return true; }

private:
    void store (float x) noexcept override { settings->bands[b].recovery = toRow (x); }
};

using LowMeterParameter = MeterParameter<0>;
using LowInParameter = InParameter<0>;
using LowSoloParameter = SoloParameter<0>;
using LowMidSideParameter = MidSideParameter<0>;
using LowGainParameter = GainParameter<0>;
using LowRatioParameter = RatioParameter<0>;
using LowThresholdParameter = ThresholdParameter<0>;
using LowAttackParameter = AttackParameter<0>;
using LowRecoveryParameter = RecoveryParameter<0>;

using MidMeterParameter = MeterParameter<1>;
using MidInParameter = InParameter<1>;
using MidSoloParameter = SoloParameter<1>;
using MidMidSideParameter = MidSideParameter<1>;
using MidGainParameter = GainParameter<1>;
using MidRatioParameter = RatioParameter<1>;
using MidThresholdParameter = ThresholdParameter<1>;
using MidAttackParameter = AttackParameter<1>;
using MidRecoveryParameter = RecoveryParameter<1>;

using HighMeterParameter = MeterParameter<2>;
using HighInParameter = InParameter<2>;
using HighSoloParameter = SoloParameter<2>;
using HighMidSideParameter = MidSideParameter<2>;
using HighGainParameter = GainParameter<2>;
using HighRatioParameter = RatioParameter<2>;
using HighThresholdParameter = ThresholdParameter<2>;
using HighAttackParameter = AttackParameter<2>;
using HighRecoveryParameter = RecoveryParameter<2>;
