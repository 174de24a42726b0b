// SPDX-License-Identifier: GPL-3.0-or-later
// What the plug-in gives today, held for ever after: every bit of sound and meters over programs, controls, blocks,
// rates, factors and hosts' habits. `--print` writes the table anew; a commit that does so says what is heard to differ.
#include "golden/GoldenTable.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

#include <juce_events/juce_events.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>

namespace
{
const GoldenTable& table()
{
    static const GoldenTable stored (CORVANE_GOLDEN_FOLDER);
    return stored;
}

/** Said beside a row that differs: which of the tables below the engine differs too. */
std::string foundationsThatDiffer()
{
    static const auto names = []
    {
        std::string text;

        for (const auto& goldenCase : goldenCases())
            if (goldenCase.foundation)
                if (const auto* stored = table().find (goldenCase.name);
                    stored == nullptr || stored->output != goldenCase.run().output)
                    text += " " + goldenCase.name;

        return text;
    }();

    return names.empty() ? "; the tables below the engine are as they were"
                         : "; the C library of this machine makes another table, look at these first:" + names;
}

/** One unit in the last place of a row's loudest sample. */
float oneUlpOfThePeak (const std::vector<float>& samples)
{
    auto peak = 0.0f;

    for (const auto sample : samples)
        peak = std::max (peak, std::abs (sample));

    return std::nextafter (peak, std::numeric_limits<float>::infinity()) - peak;
}

class Golden : public ::testing::Test
{
public:
    explicit Golden (GoldenCase caseToRun) : goldenCase (std::move (caseToRun)) {}

    void TestBody() override
    {
        const auto* stored = table().find (goldenCase.name);
        ASSERT_NE (nullptr, stored) << "no row; print the table anew and say why";

        const auto result = goldenCase.run();
        EXPECT_EQ (stored->meters, result.meters) << "meters: " << goldenCase.reason << foundationsThatDiffer();

        if (! goldenCase.sampled)
        {
            const auto more = goldenCase.foundation ? std::string() : foundationsThatDiffer();
            EXPECT_EQ (stored->output, result.output) << "output: " << goldenCase.reason << more;
            return;
        }

        ASSERT_EQ (stored->samples.size(), result.samples.size());
        const auto tolerance = oneUlpOfThePeak (stored->samples);

        for (std::size_t i = 0; i < result.samples.size(); ++i)
            ASSERT_NEAR (stored->samples[i], result.samples[i], tolerance)
                << "value " << i << " of the kept ones: " << goldenCase.reason << foundationsThatDiffer();
    }

private:
    const GoldenCase goldenCase;
};
} // namespace

TEST (GoldenTable, HoldsARowForEveryCaseAndNoOther)
{
    const auto cases = goldenCases();
    EXPECT_EQ (cases.size(), table().rows().size());

    for (const auto& goldenCase : cases)
        EXPECT_NE (nullptr, table().find (goldenCase.name)) << goldenCase.name;
}

int main (int argc, char** argv)
{
    ::testing::InitGoogleTest (&argc, argv);
    const TestHome home;
    const juce::ScopedJuceInitialiser_GUI framework;

    if (argc == 2 && std::string (argv[1]) == "--print")
    {
        GoldenTable::print (goldenCases(), CORVANE_GOLDEN_FOLDER);
        std::cout << "Written anew: " << CORVANE_GOLDEN_FOLDER << "/table.json\n";
        return 0;
    }

    for (const auto& goldenCase : goldenCases())
        ::testing::RegisterTest ("Golden", goldenCase.name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                                 [goldenCase]() -> ::testing::Test* { return new Golden (goldenCase); });

    return RUN_ALL_TESTS();
}
