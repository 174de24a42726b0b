// SPDX-License-Identifier: GPL-3.0-or-later
// The bundles' own windows inside a host's, on a screen: each format embeds the editor in its own way.
#include "support/BundleHost.h"
#include "views/MessagePump.h"
#include "views/XErrors.h"

#include <map>

namespace
{
using namespace BundleHost;

constexpr int settleMs = 400; // for the embedding, which asks the X server and waits for answers

/** A host's window around the plug-in's. */
struct HostWindow
{
    explicit HostWindow (juce::AudioPluginInstance& plugin) : instance (plugin), editor (plugin.createEditorIfNeeded())
    {
        if (editor == nullptr)
            return;

        frame.addAndMakeVisible (*editor);
        frame.setSize (editor->getWidth(), editor->getHeight());
        frame.addToDesktop (juce::ComponentPeer::windowHasTitleBar);
        frame.setVisible (true);
        XErrors::countInsteadOfEnding();
        pumpMessages (settleMs);
    }

    ~HostWindow()
    {
        if (editor != nullptr)
            instance.editorBeingDeleted (editor.get());

        editor.reset();
        pumpMessages (20);
    }

    juce::AudioPluginInstance& instance;
    juce::Component frame;
    std::unique_ptr<juce::AudioProcessorEditor> editor;
};

class WindowIn : public ::testing::TestWithParam<Format>
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE (juce::Desktop::getInstance().getDisplays().displays.isEmpty()) << "needs an X server";
        ASSERT_TRUE (XErrors::countInsteadOfEnding());
        ASSERT_NE (instance, nullptr);
        instance->prepareToPlay (rate, blockLength);
    }

    std::unique_ptr<juce::AudioPluginFormat> format = makeFormat (GetParam());
    std::unique_ptr<juce::AudioPluginInstance> instance = instantiate (*format);
};
} // namespace

TEST_P (WindowIn, HasTheFrontsFullSize)
{
    const HostWindow window (*instance);
    ASSERT_NE (window.editor, nullptr);
    EXPECT_EQ (window.editor->getWidth(), 1350); // the test's screen is large enough for 100 %
    EXPECT_EQ (window.editor->getHeight(), 723);
}

// A wrapper that computes the editor's size back from the host's, which is rounded up, lets it grow with every change.
TEST_P (WindowIn, HasASizeThatFollowsFromZoomAndScaleAlone)
{
    const HostWindow window (*instance);
    ASSERT_NE (window.editor, nullptr);
    std::map<float, juce::Point<int>> sizes { { 1.0f, { 1350, 723 } } };

    for (const auto scale : { 1.25f, 1.0f, 1.5f, 1.0f, 1.25f, 1.1f, 1.75f, 1.33f, 2.0f, 1.1f, 1.5f, 1.33f, 1.0f })
    {
        window.editor->setScaleFactor (scale);
        pumpMessages (100);
        const juce::Point<int> size { window.editor->getWidth(), window.editor->getHeight() };

        // The first visit tells the size, by the rule; every other must find the same.
        EXPECT_EQ (sizes.emplace (scale, size).first->second, size) << "scale " << scale;
        EXPECT_NEAR (size.x, 1350.0f * scale, 1.01f) << "scale " << scale;
        EXPECT_NEAR (size.y, 723.0f * scale, 1.01f) << "scale " << scale;
    }
}

TEST_P (WindowIn, LeavesTheSoundAloneWhileItIsOpen)
{
    juce::AudioBuffer<float> input (2, 8 * blockLength);
    input.clear();

    for (int i = 0; i < input.getNumSamples(); ++i)
        for (int channel = 0; channel < 2; ++channel)
            input.setSample (channel, i, 0.3f * std::sin (0.05f * static_cast<float> (i)));

    const auto play = [&] (juce::AudioPluginInstance& plugin, bool withWindow)
    {
        std::unique_ptr<HostWindow> window;

        if (withWindow)
            window = std::make_unique<HostWindow> (plugin);

        return run (plugin, input, [&] (int) { pumpMessages (withWindow ? 60 : 0); });
    };

    const auto seen = play (*instance, true);
    auto other = instantiate (*format);
    ASSERT_NE (other, nullptr);
    other->prepareToPlay (rate, blockLength);
    const auto unseen = play (*other, false);

    ASSERT_EQ (seen.getNumSamples(), unseen.getNumSamples());

    for (int i = 0; i < seen.getNumSamples(); ++i)
        ASSERT_EQ (seen.getSample (0, i), unseen.getSample (0, i)) << "frame " << i;
}

TEST_P (WindowIn, OpensAndClosesAgainAndAgain)
{
    for (int i = 0; i < 10; ++i)
    {
        const HostWindow window (*instance);
        ASSERT_NE (window.editor, nullptr) << "opening " << i;

        auto* gain = parameterNamed (*instance, "Low Gain");
        ASSERT_NE (gain, nullptr);
        gain->setValueNotifyingHost (static_cast<float> (i % 2));
        pumpMessages (100); // a tick of the refresh
    }
}

TEST_P (WindowIn, IsGoneBeforeItsInstance)
{
    {
        const HostWindow window (*instance);
        ASSERT_NE (window.editor, nullptr);
    }

    instance.reset();
    pumpMessages (100); // nothing that is left may call
}

INSTANTIATE_TEST_SUITE_P (Bundles, WindowIn, ::testing::Values (Format::vst3, Format::lv2),
                          [] (const auto& format) { return format.param == Format::vst3 ? "Vst3" : "Lv2"; });
