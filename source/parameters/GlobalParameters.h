// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/DoubleParameter.h"
#include "parameters/OnOffParameter.h"

/** The eleven controls that the bands share. */
class MixParameter final : public DoubleParameter<MixParameterInfos>
{
public:
    using DoubleParameter::DoubleParameter;
    float getValue() const override { return toNormalised (settings->mix); }
    juce::String getText (float x, int) const override;
    float getValueForText (const juce::String& text) const override;

private:
    void store (float x) noexcept override { settings->mix = toValue (x); }
};

/** The detector's high-pass; its lowest position is "OFF". */
class HPFParameter final : public CorvaneQ7Param
{
public:
    using Scale = FrequencyScale<HPFParameterInfos>;
    using CorvaneQ7Param::CorvaneQ7Param;

    float getValue() const override { return Scale::toNormalised (settings->hpfHz); }
    float getDefaultValue() const override { return static_cast<float> (HPFParameterInfos::defaultValue); }
    int getNumSteps() const override;
    juce::String getText (float x, int) const override;
    float getValueForText (const juce::String& text) const override;

private:
    void store (float x) noexcept override { settings->hpfHz = Scale::toHz (x); }
};

class MasterGainParameter final : public DoubleParameter<MasterGainParameterInfos>
{
public:
    using DoubleParameter::DoubleParameter;
    float getValue() const override { return toNormalised (settings->masterGainDb.target); }

private:
    void store (float x) noexcept override;
};

/** A corner of the crossover; it has no name field of the family's and no "OFF". */
template <typename Infos, Shared<double> ChannelSettings::*field>
class XOverParameter final : public SettingsParameter
{
public:
    using Scale = FrequencyScale<Infos>;

    XOverParameter (const juce::String& identifier, const juce::String& displayName, ChannelSettings& record,
                    bool finiteSteps)
        : SettingsParameter (identifier, displayName, record), useFiniteSteps (finiteSteps)
    {
    }

    float getValue() const override { return Scale::toNormalised (settings.load()->*field); }
    float getDefaultValue() const override { return static_cast<float> (Infos::defaultValue); }
    int getNumSteps() const override { return useFiniteSteps ? 1001 : continuousSteps; }
    juce::String getText (float x, int) const override { return Scale::text (Scale::toHz (x)); }

    float getValueForText (const juce::String& text) const override
    {
        return finiteOrDefault (Scale::toPosition (Scale::hzFrom (text)));
    }

private:
    void store (float x) noexcept override { settings.load()->*field = Scale::toHz (x); }

    const bool useFiniteSteps;
};

using LowXOverParameter = XOverParameter<LowXOverParameterInfos, &ChannelSettings::lowXOverHz>;
using HighXOverParameter = XOverParameter<HighXOverParameterInfos, &ChannelSettings::highXOverHz>;

class NukeParameter final : public OnOffParameter
{
public:
    using OnOffParameter::OnOffParameter;
    float getValue() const override { return settings->nuke ? 1.0f : 0.0f; }
    float getDefaultValue() const override { return 0.0f; }

private:
    void store (float x) noexcept override { settings->nuke = x >= 0.5f; }
};

class NiveauParameter final : public OnOffParameter
{
public:
    using OnOffParameter::OnOffParameter;
    float getValue() const override { return settings->niveau ? 1.0f : 0.0f; }
    float getDefaultValue() const override { return 1.0f; }

private:
    void store (float x) noexcept override { settings->niveau = x >= 0.5f; }
};

/** Couples the bands' controls: only changes that come later are linked. */
class LinkParameter final : public OnOffParameter
{
public:
    using OnOffParameter::OnOffParameter;
    float getValue() const override { return settings->link ? 1.0f : 0.0f; }
    float getDefaultValue() const override { return 0.0f; }

private:
    void store (float x) noexcept override { settings->link = x >= 0.5f; }
};

/** The plug-in's own bypass: it turns the mix to dry within 0.1 s. */
class BypassParameter final : public SettingsParameter
{
public:
    /** Two steps in every wrapper: the last argument is that of all controls. */
    BypassParameter (const juce::String& identifier, const juce::String& displayName, ChannelSettings& record, bool)
        : SettingsParameter (identifier, displayName, record)
    {
    }

    float getValue() const override { return settings->bypass.target >= 0.5 ? 1.0f : 0.0f; }
    float getDefaultValue() const override { return 0.0f; }
    int getNumSteps() const override { return 2; }
    juce::String getText (float x, int) const override { return x >= 0.5f ? "Byp" : "In"; }
    float getValueForText (const juce::String& text) const override { return text.startsWith ("B") ? 1.0f : 0.0f; }

private:
    void store (float x) noexcept override { settings->bypass.setTarget (x >= 0.5f ? 1.0 : 0.0); }
};

class InLevelParameter final : public DoubleParameter<InLevelParameterInfos>
{
public:
    using DoubleParameter::DoubleParameter;
    float getValue() const override { return toNormalised (settings->inLevelDb.target); }

private:
    void store (float x) noexcept override;
};

class OutLevelParameter final : public DoubleParameter<OutLevelParameterInfos>
{
public:
    using DoubleParameter::DoubleParameter;
    float getValue() const override { return toNormalised (settings->outLevelDb.target); }

private:
    void store (float x) noexcept override;
};
