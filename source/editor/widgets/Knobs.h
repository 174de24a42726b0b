// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/widgets/NVXSlider.h"

/** The three sizes of the family, in px at 100 %. */
class BigKnob final : public NVXSlider
{
public:
    static constexpr int baseSize = 120;

    BigKnob() : NVXSlider (Assets::bigKnob()) { setSize (baseSize, baseSize); }
};

class MidKnob final : public NVXSlider
{
public:
    static constexpr int baseSize = 72;

    MidKnob() : NVXSlider (Assets::midKnob()) { setSize (baseSize, baseSize); }
};

class SmallKnob final : public NVXSlider
{
public:
    static constexpr int baseSize = 54;

    SmallKnob() : NVXSlider (Assets::smallKnob()) { setSize (baseSize, baseSize); }
};
