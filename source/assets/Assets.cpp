// SPDX-License-Identifier: GPL-3.0-or-later
#include "assets/Assets.h"

#include "CorvaneAssetData.h"

namespace Assets
{
namespace
{
// The cache knows a picture by the address of its data, which is constant: these are static arrays.
template <typename Data>
juce::Image decoded (const Data& data, int size)
{
    return juce::ImageCache::getFromMemory (data, size);
}
} // namespace

// The array and its size have names that differ by an ending.
#define CORVANE_IMAGE(name) decoded (CorvaneAssetData::name##_png, CorvaneAssetData::name##_pngSize)

KnobImages bigKnob()
{
    return { CORVANE_IMAGE (knobbigbackground), CORVANE_IMAGE (knobbigrotor), CORVANE_IMAGE (knobbigtop) };
}

KnobImages midKnob()
{
    return { CORVANE_IMAGE (knobmidbackground), CORVANE_IMAGE (knobmidrotor), CORVANE_IMAGE (knobmidtop) };
}

KnobImages smallKnob()
{
    return { CORVANE_IMAGE (knobsmallbackground), CORVANE_IMAGE (knobsmallrotor), CORVANE_IMAGE (knobsmalltop) };
}

TwoStates linkButton() { return { CORVANE_IMAGE (buttonlink), CORVANE_IMAGE (buttonlinkdown) }; }
TwoStates niveauButton() { return { CORVANE_IMAGE (buttonniveau), CORVANE_IMAGE (buttonniveaudown) }; }
TwoStates nukeButton() { return { CORVANE_IMAGE (buttonnuke), CORVANE_IMAGE (buttonnukedown) }; }
TwoStates midSideButton() { return { CORVANE_IMAGE (buttonms), CORVANE_IMAGE (buttonmsdown) }; }
TwoStates soloButton() { return { CORVANE_IMAGE (buttonsolo), CORVANE_IMAGE (buttonsolodown) }; }
TwoStates bandInButton() { return { CORVANE_IMAGE (buttonin), CORVANE_IMAGE (buttonindown) }; }
TwoStates bypassSwitch() { return { CORVANE_IMAGE (switchoff), CORVANE_IMAGE (switchon) }; }
TwoStates greenLamp() { return { CORVANE_IMAGE (lampgreenoff), CORVANE_IMAGE (lampgreenon) }; }
TwoStates redLamp() { return { CORVANE_IMAGE (lampredoff), CORVANE_IMAGE (lampredon) }; }
TwoStates yellowLamp() { return { CORVANE_IMAGE (lampyellowoff), CORVANE_IMAGE (lampyellowon) }; }
TwoStates barLogo() { return { CORVANE_IMAGE (barlogo), CORVANE_IMAGE (barlogodown) }; }
TwoStates barMenu() { return { CORVANE_IMAGE (barmenu), CORVANE_IMAGE (barmenudown) }; }

KeyImages settingsKey()
{
    return { CORVANE_IMAGE (toolbarsettings), CORVANE_IMAGE (toolbarsettingsover),
             CORVANE_IMAGE (toolbarsettingsdown) };
}

KeyImages slotAKey()
{
    return { CORVANE_IMAGE (toolbara), CORVANE_IMAGE (toolbaraover), CORVANE_IMAGE (toolbaradown) };
}

KeyImages slotBKey()
{
    return { CORVANE_IMAGE (toolbarb), CORVANE_IMAGE (toolbarbover), CORVANE_IMAGE (toolbarbdown) };
}

KeyImages copyAToBKey()
{
    return { CORVANE_IMAGE (toolbarcopyatob), CORVANE_IMAGE (toolbarcopyatobover),
             CORVANE_IMAGE (toolbarcopyatobdown) };
}

KeyImages copyBToAKey()
{
    return { CORVANE_IMAGE (toolbarcopybtoa), CORVANE_IMAGE (toolbarcopybtoaover),
             CORVANE_IMAGE (toolbarcopybtoadown) };
}

juce::Image front() { return CORVANE_IMAGE (front); }
juce::Image meterScale() { return CORVANE_IMAGE (meterscale); }
juce::Image meterGlass() { return CORVANE_IMAGE (meterglass); }
juce::Image aboutBackground() { return CORVANE_IMAGE (aboutbackground); }
juce::Image aboutBrand() { return CORVANE_IMAGE (aboutbrand); }
juce::Image aboutDistributor() { return CORVANE_IMAGE (aboutdistributor); }

#undef CORVANE_IMAGE

juce::Typeface::Ptr segment7()
{
    return juce::Typeface::createSystemTypefaceFor (CorvaneAssetData::Segment7_otf, CorvaneAssetData::Segment7_otfSize);
}
} // namespace Assets
