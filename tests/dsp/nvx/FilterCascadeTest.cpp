// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/FilterCascade.h"

#include "dsp/nvx/IIRFilter.h"
#include "dsp/nvx/OnePoleFilter.h"
#include "dsp/nvx/SVFilter.h"

#include "support/Samples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace
{
using Samples::whiteNoise;

constexpr int numNoise = 4096;

// Runs the filters one by one, in the given order, each over the whole signal.
std::vector<float> inOrder (const std::vector<NVX::Filter*>& filters, std::vector<float> samples)
{
    for (auto* filter : filters)
    {
        filter->setSampleRate (1, 48000.0);
        filter->process (samples.data(), static_cast<int> (samples.size()), 0);
    }

    return samples;
}

std::vector<int> typesOf (const NVX::FilterCascade::FilterList& list)
{
    std::vector<int> types;

    for (const auto& filter : list)
        types.push_back (filter->type);

    return types;
}

template <class FilterClass>
bool buildsInto (int type, bool intoBiquads)
{
    NVX::FilterCascade cascade;
    cascade.addFilter (type, 1234.0, 0.9, 1.5);
    const auto& list = intoBiquads ? cascade.biquads : cascade.doubleFilters;
    const auto& other = intoBiquads ? cascade.doubleFilters : cascade.biquads;

    return list.size() == 1 && other.empty() && list[0]->type == type && list[0]->frequency == 1234.0
           && dynamic_cast<FilterClass*> (list[0].get()) != nullptr;
}

TEST (FilterCascade, EveryNumberBuildsItsClass)
{
    for (int type = 0; type <= 6; ++type)
        EXPECT_TRUE (buildsInto<NVX::IIRFilter> (type, true)) << type;

    EXPECT_TRUE (buildsInto<NVX::OnePoleFilter<7>> (7, false));
    EXPECT_TRUE (buildsInto<NVX::OnePoleFilter<8>> (8, false));
    EXPECT_TRUE (buildsInto<NVX::SVFilter<9>> (9, false));
    EXPECT_TRUE (buildsInto<NVX::SVFilter<10>> (10, false));
    EXPECT_TRUE (buildsInto<NVX::SVFilter<11>> (11, false));
    EXPECT_TRUE (buildsInto<NVX::SVFilter<12>> (12, false));
    EXPECT_TRUE (buildsInto<NVX::SVFilter<13>> (13, false));
    EXPECT_TRUE (buildsInto<NVX::SVFilter<14>> (14, false));
    EXPECT_TRUE (buildsInto<NVX::SVFilter<15>> (15, false));
    EXPECT_TRUE (buildsInto<NVX::SVFilter<16>> (16, false));
}

TEST (FilterCascade, NamesKeepTheirNumbers)
{
    EXPECT_EQ (NVX::iirHighPass, 0);
    EXPECT_EQ (NVX::iirLowPass, 1);
    EXPECT_EQ (NVX::iirPeaking, 2);
    EXPECT_EQ (NVX::iirAllPass, 3);
    EXPECT_EQ (NVX::iirBandPass, 4);
    EXPECT_EQ (NVX::iirLowShelf, 5);
    EXPECT_EQ (NVX::iirHighShelf, 6);
    EXPECT_EQ (NVX::onePoleHighPass, 7);
    EXPECT_EQ (NVX::onePoleLowPass, 8);
    EXPECT_EQ (NVX::svLowPass, 9);
    EXPECT_EQ (NVX::svBandPass, 10);
    EXPECT_EQ (NVX::svHighPass, 11);
    EXPECT_EQ (NVX::svPeak, 12);
    EXPECT_EQ (NVX::svSilent, 13);
    EXPECT_EQ (NVX::svBell, 14);
    EXPECT_EQ (NVX::svLowShelf, 15);
    EXPECT_EQ (NVX::svHighShelf, 16);
}

TEST (FilterCascade, ATypeOutOfRangeAddsNothing)
{
    NVX::FilterCascade cascade;

    for (const int type : { 17, 18, 1000, std::numeric_limits<int>::max(), -1, std::numeric_limits<int>::min() })
        cascade.addFilter (type, 1000.0, 0.7, 2.0);

    EXPECT_TRUE (cascade.doubleFilters.empty());
    EXPECT_TRUE (cascade.biquads.empty());
}

TEST (FilterCascade, AnEmptyOneLeavesTheSignalUnchanged)
{
    const auto noise = whiteNoise (numNoise, 0xe0);
    auto samples = noise;
    NVX::FilterCascade cascade;
    EXPECT_EQ (cascade.sampleRate, 44100.0);
    EXPECT_EQ (cascade.numChannels, 1);

    cascade.process (samples.data(), numNoise, 0);
    EXPECT_EQ (samples, noise);

    cascade.setSampleRate (1, 48000.0);
    cascade.process (samples.data(), numNoise, 0);
    EXPECT_EQ (samples, noise);
}

TEST (FilterCascade, RunsABiquadAddedFirstAfterAStateVariableFilterAddedSecond)
{
    const auto noise = whiteNoise (numNoise, 0x0d0e);
    NVX::FilterCascade cascade;
    cascade.addFilter (6, 12000.0, 0.5, 0.954992586021436);
    cascade.addFilter (14, 230.0, 0.3, 0.9959785837251127);
    cascade.setSampleRate (1, 48000.0);
    auto samples = noise;
    cascade.process (samples.data(), numNoise, 0);

    NVX::IIRFilter shelf (6, 12000.0, 0.5, 0.954992586021436);
    NVX::SVFilter<14> bell (230.0, 0.3, 0.9959785837251127);
    EXPECT_EQ (samples, inOrder ({ &bell, &shelf }, noise));
    EXPECT_NE (samples, inOrder ({ &shelf, &bell }, noise)); // the roundings tell the orders apart
}

TEST (FilterCascade, KeepsTheOrderOfInsertionWithinEachList)
{
    const auto noise = whiteNoise (numNoise, 0x0d0f);
    NVX::FilterCascade cascade;
    cascade.addFilter (6, 9000.0, 0.5, 1.3);
    cascade.addFilter (16, 3000.0, 0.7, 1.4);
    cascade.addFilter (8, 5000.0, 0.7, 2.0);
    cascade.addFilter (0, 30.0, 0.7, 1.0);
    cascade.addFilter (7, 50.0, 0.7, 2.0);
    EXPECT_EQ (typesOf (cascade.doubleFilters), (std::vector<int> { 16, 8, 7 }));
    EXPECT_EQ (typesOf (cascade.biquads), (std::vector<int> { 6, 0 }));

    cascade.setSampleRate (1, 48000.0);
    auto samples = noise;
    cascade.process (samples.data(), numNoise, 0);

    NVX::SVFilter<16> a (3000.0, 0.7, 1.4);
    NVX::OnePoleFilter<8> b (5000.0);
    NVX::OnePoleFilter<7> c (50.0);
    NVX::IIRFilter d (6, 9000.0, 0.5, 1.3), e (0, 30.0, 0.7, 1.0);
    EXPECT_EQ (samples, inOrder ({ &a, &b, &c, &d, &e }, noise));
    EXPECT_NE (samples, inOrder ({ &b, &a, &c, &d, &e }, noise));
    EXPECT_NE (samples, inOrder ({ &a, &b, &c, &e, &d }, noise));
}

TEST (FilterCascade, OnePolesIgnoreQAndGain)
{
    for (const int type : { 7, 8 })
    {
        NVX::FilterCascade plain, odd;
        plain.addFilter (type, 700.0, 1.0, 1.0);
        odd.addFilter (type, 700.0, 9.0, 0.1);
        EXPECT_EQ (odd.doubleFilters[0]->q, 1.0);
        EXPECT_EQ (odd.doubleFilters[0]->gain, 1.0);

        plain.setSampleRate (1, 48000.0);
        odd.setSampleRate (1, 48000.0);
        auto a = whiteNoise (256, 0x0999), b = a;
        plain.process (a.data(), 256, 0);
        odd.process (b.data(), 256, 0);
        EXPECT_EQ (a, b);
    }
}

TEST (FilterCascade, OtherFiltersGetQAndGain)
{
    for (const int type : { 0, 1, 2, 3, 4, 5, 6, 9, 10, 11, 12, 13, 14, 15, 16 })
    {
        NVX::FilterCascade cascade;
        cascade.addFilter (type, 700.0, 0.9, 0.5);
        const auto& filter = type <= 6 ? cascade.biquads[0] : cascade.doubleFilters[0];
        EXPECT_EQ (filter->q, 0.9);
        EXPECT_EQ (filter->gain, 0.5);
    }
}

TEST (FilterCascade, ANewFilterStandsAt44100HzAndPassesOnUntilSetSampleRate)
{
    const auto noise = whiteNoise (256, 0x4e3);
    auto samples = noise;
    NVX::FilterCascade cascade;
    cascade.setSampleRate (2, 96000.0);
    cascade.addFilter (14, 700.0, 0.9, 0.5);
    cascade.addFilter (6, 700.0, 0.9, 0.5);

    for (const auto* list : { &cascade.doubleFilters, &cascade.biquads })
    {
        EXPECT_EQ ((*list)[0]->sampleRate, 44100.0);
        EXPECT_EQ ((*list)[0]->numChannels, 1);
        EXPECT_EQ ((*list)[0]->getNumRecords(), 0);
    }

    cascade.process (samples.data(), 256, 0);
    EXPECT_EQ (samples, noise);

    cascade.setSampleRate (2, 96000.0);
    cascade.process (samples.data(), 256, 0);
    EXPECT_NE (samples, noise);
}

TEST (FilterCascade, SetSampleRateReachesEveryFilterAndSetsReady)
{
    NVX::FilterCascade cascade;

    for (int type = 0; type <= 16; ++type)
        cascade.addFilter (type, 700.0, 0.9, 0.5);

    EXPECT_FALSE (cascade.ready);
    cascade.setSampleRate (3, 96000.0);
    EXPECT_TRUE (cascade.ready);
    EXPECT_EQ (cascade.numChannels, 3);
    EXPECT_EQ (cascade.sampleRate, 96000.0);

    for (const auto* list : { &cascade.doubleFilters, &cascade.biquads })
        for (const auto& filter : *list)
        {
            EXPECT_EQ (filter->sampleRate, 96000.0) << "type " << filter->type;
            EXPECT_EQ (filter->numChannels, 3) << "type " << filter->type;
            EXPECT_EQ (filter->getNumRecords(), 3) << "type " << filter->type;
        }

    cascade.setSampleRate (0, 96000.0);
    EXPECT_TRUE (cascade.ready);

    for (const auto* list : { &cascade.doubleFilters, &cascade.biquads })
        for (const auto& filter : *list)
            EXPECT_EQ (filter->getNumRecords(), 0) << "type " << filter->type;
}

TEST (FilterCascade, ClearDropsTheRecordsAndKeepsTheFilters)
{
    const auto noise = whiteNoise (256, 0xc1);
    NVX::FilterCascade cascade;
    cascade.addFilter (14, 700.0, 0.9, 0.5);
    cascade.addFilter (8, 700.0, 0.9, 0.5);
    cascade.addFilter (6, 700.0, 0.9, 0.5);
    cascade.setSampleRate (1, 48000.0);
    auto first = noise;
    cascade.process (first.data(), 256, 0);

    cascade.clear();
    EXPECT_FALSE (cascade.ready);
    EXPECT_EQ (typesOf (cascade.doubleFilters), (std::vector<int> { 14, 8 }));
    EXPECT_EQ (typesOf (cascade.biquads), (std::vector<int> { 6 }));

    for (const auto* list : { &cascade.doubleFilters, &cascade.biquads })
        for (const auto& filter : *list)
            EXPECT_EQ (filter->getNumRecords(), 0) << "type " << filter->type;

    auto samples = noise;
    cascade.process (samples.data(), 256, 0);
    EXPECT_EQ (samples, noise);

    cascade.setSampleRate (1, 48000.0); // from silence again
    cascade.process (samples.data(), 256, 0);
    EXPECT_EQ (samples, first);
}

TEST (FilterCascade, ClearFiltersEmptiesBothLists)
{
    NVX::FilterCascade cascade;
    cascade.addFilter (14, 700.0, 0.9, 0.5);
    cascade.addFilter (6, 700.0, 0.9, 0.5);
    cascade.setSampleRate (1, 48000.0);
    cascade.clearFilters();
    EXPECT_TRUE (cascade.doubleFilters.empty());
    EXPECT_TRUE (cascade.biquads.empty());

    const auto noise = whiteNoise (256, 0xcf);
    auto samples = noise;
    cascade.process (samples.data(), 256, 0);
    EXPECT_EQ (samples, noise);
}

TEST (FilterCascade, ProcessAllKeepsChannelsApart)
{
    const auto left = whiteNoise (512, 0x1ef7), right = whiteNoise (512, 0x419b);
    NVX::FilterCascade both, alone;

    for (auto* cascade : { &both, &alone })
    {
        cascade->addFilter (11, 9.5, 0.796, 1.0);
        cascade->addFilter (6, 12000.0, 0.5, 0.954992586021436);
    }

    both.setSampleRate (2, 48000.0);
    alone.setSampleRate (1, 48000.0);

    auto l = left, r = right, expected = right;
    float* channels[] = { l.data(), r.data() };
    both.processAll (channels, 512);
    alone.process (expected.data(), 512, 0);
    EXPECT_EQ (r, expected);
    EXPECT_NE (l, left);
}

TEST (FilterCascade, SilentFilterSilencesTheChain)
{
    NVX::FilterCascade cascade;
    cascade.addFilter (6, 12000.0, 0.5, 2.0);
    cascade.addFilter (13, 1000.0, 0.7, 2.0);
    cascade.addFilter (14, 1000.0, 0.7, 2.0);
    cascade.setSampleRate (1, 48000.0);

    auto samples = whiteNoise (512, 0x13);
    cascade.process (samples.data(), 512, 0);
    EXPECT_EQ (samples, std::vector<float> (512, 0.0f));
}

} // namespace
