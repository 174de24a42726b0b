// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

/** Comparisons of whole buffers: EXPECT_TRUE (sameBits (a, b)) names the first sample that differs. */
inline ::testing::AssertionResult sameShape (const juce::AudioBuffer<float>& a, const juce::AudioBuffer<float>& b)
{
    if (a.getNumChannels() != b.getNumChannels() || a.getNumSamples() != b.getNumSamples())
        return ::testing::AssertionFailure() << a.getNumChannels() << " x " << a.getNumSamples() << " against "
                                             << b.getNumChannels() << " x " << b.getNumSamples();

    return ::testing::AssertionSuccess();
}

/** Equal to within a tolerance in every sample; a NaN on either side is a difference. */
inline ::testing::AssertionResult equalWithin (const juce::AudioBuffer<float>& a, const juce::AudioBuffer<float>& b,
                                               float tolerance)
{
    if (auto shape = sameShape (a, b); ! shape)
        return shape;

    for (int c = 0; c < a.getNumChannels(); ++c)
        for (int i = 0; i < a.getNumSamples(); ++i)
            if (! (std::abs (a.getSample (c, i) - b.getSample (c, i)) <= tolerance))
                return ::testing::AssertionFailure() << "channel " << c << ", sample " << i << ": "
                                                     << a.getSample (c, i) << " against " << b.getSample (c, i);

    return ::testing::AssertionSuccess();
}

/** Equal bit for bit. */
inline ::testing::AssertionResult sameBits (const juce::AudioBuffer<float>& a, const juce::AudioBuffer<float>& b)
{
    if (auto shape = sameShape (a, b); ! shape)
        return shape;

    for (int c = 0; c < a.getNumChannels(); ++c)
        for (int i = 0; i < a.getNumSamples(); ++i)
            if (std::memcmp (a.getReadPointer (c, i), b.getReadPointer (c, i), sizeof (float)) != 0)
                return ::testing::AssertionFailure() << "channel " << c << ", sample " << i << ": "
                                                     << a.getSample (c, i) << " against " << b.getSample (c, i);

    return ::testing::AssertionSuccess();
}
