// SPDX-License-Identifier: GPL-3.0-or-later
// The LV2 entries in front of a framework of which every function throws: none may let that out, and each tells the host
// of a failure in the way that its interface has for it.
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/state/state.h>
#include <lv2/ui/ui.h>

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

namespace
{
bool throwsItself = false; // the function that tells of an interface, too

int numCalls = 0;

template <typename Result, typename... Arguments>
Result fail (Arguments...)
{
    ++numCalls;
    throw std::runtime_error ("from inside");
}

constexpr auto recallUri = "https://lv2-extensions.juce.com/turtle_recall";

const void* dataOf (const char* uri)
{
    static const LV2_State_Interface state { fail, fail };
    static int (*const recall) (const char*) = fail;
    static const LV2UI_Resize resize { nullptr, fail };
    static const LV2UI_Idle_Interface idle { fail };
    static const LV2_Options_Interface options { fail, fail };
    static const int other = 0;

    if (throwsItself)
        throw std::runtime_error ("from inside");

    const auto is = [&] (const char* known) { return std::strcmp (uri, known) == 0; };

    return is (LV2_STATE__interface)      ? static_cast<const void*> (&state)
           : is (recallUri)               ? static_cast<const void*> (&recall)
           : is (LV2_UI__resize)          ? static_cast<const void*> (&resize)
           : is (LV2_UI__idleInterface)   ? static_cast<const void*> (&idle)
           : is (LV2_OPTIONS__interface)  ? static_cast<const void*> (&options)
           : is ("urn:another-interface") ? static_cast<const void*> (&other)
                                          : nullptr;
}
} // namespace

namespace juce::lv2_client
{
const LV2_Descriptor* frameworkDescriptor (uint32_t);
const LV2UI_Descriptor* frameworkUIDescriptor (uint32_t);

const LV2_Descriptor* frameworkDescriptor (uint32_t index)
{
    static const LV2_Descriptor descriptor { "urn:plugin", fail, fail, fail, fail, fail, fail, dataOf };
    return index == 0 ? &descriptor : nullptr;
}

const LV2UI_Descriptor* frameworkUIDescriptor (uint32_t index)
{
    static const LV2UI_Descriptor descriptor { "urn:window", fail, fail, fail, dataOf };
    return index == 0 ? &descriptor : nullptr;
}
} // namespace juce::lv2_client

namespace
{
template <typename Interface, typename Descriptor>
const Interface& interfaceOf (const Descriptor& descriptor, const char* uri)
{
    return *static_cast<const Interface*> (descriptor.extension_data (uri));
}

class Lv2Entry : public ::testing::Test
{
protected:
    void SetUp() override
    {
        throwsItself = false;
        numCalls = 0;
        ASSERT_NE (plugin, nullptr);
        ASSERT_NE (window, nullptr);
    }

    const LV2_Descriptor* const plugin = lv2_descriptor (0);
    const LV2UI_Descriptor* const window = lv2ui_descriptor (0);
};
} // namespace

TEST_F (Lv2Entry, IsOneOfEachKindByTheFrameworksName)
{
    EXPECT_STREQ (plugin->URI, "urn:plugin");
    EXPECT_STREQ (window->URI, "urn:window");
    EXPECT_EQ (lv2_descriptor (1), nullptr);
    EXPECT_EQ (lv2ui_descriptor (1), nullptr);
}

TEST_F (Lv2Entry, OfThePluginLetsNoExceptionOut)
{
    EXPECT_EQ (plugin->instantiate (plugin, 48000.0, "", nullptr), nullptr);
    plugin->connect_port (nullptr, 0, nullptr);
    plugin->activate (nullptr);
    plugin->run (nullptr, 0);
    plugin->deactivate (nullptr);
    plugin->cleanup (nullptr);
    EXPECT_EQ (numCalls, 6);

    const auto& state = interfaceOf<LV2_State_Interface> (*plugin, LV2_STATE__interface);
    EXPECT_EQ (state.save (nullptr, nullptr, nullptr, 0, nullptr), LV2_STATE_ERR_UNKNOWN);
    EXPECT_EQ (state.restore (nullptr, nullptr, nullptr, 0, nullptr), LV2_STATE_ERR_UNKNOWN);
    EXPECT_NE (interfaceOf<int (*) (const char*)> (*plugin, recallUri) (""), 0);
    EXPECT_EQ (numCalls, 9);
}

TEST_F (Lv2Entry, OfTheWindowLetsNoExceptionOut)
{
    EXPECT_EQ (window->instantiate (window, "", "", nullptr, nullptr, nullptr, nullptr), nullptr);
    window->cleanup (nullptr);
    window->port_event (nullptr, 0, 0, 0, nullptr);
    EXPECT_EQ (numCalls, 3);

    EXPECT_NE (interfaceOf<LV2UI_Resize> (*window, LV2_UI__resize).ui_resize (nullptr, 10, 10), 0);
    EXPECT_EQ (interfaceOf<LV2UI_Idle_Interface> (*window, LV2_UI__idleInterface).idle (nullptr), 0); // still open
    const auto& options = interfaceOf<LV2_Options_Interface> (*window, LV2_OPTIONS__interface);
    EXPECT_EQ (options.get (nullptr, nullptr), uint32_t { LV2_OPTIONS_ERR_UNKNOWN });
    EXPECT_EQ (options.set (nullptr, nullptr), uint32_t { LV2_OPTIONS_ERR_UNKNOWN });
    EXPECT_EQ (numCalls, 7);
}

TEST_F (Lv2Entry, HasTheFrameworksInterfacesAndNoOthers)
{
    for (const auto* data :
         { plugin->extension_data ("urn:another-interface"), window->extension_data ("urn:another-interface") })
        EXPECT_EQ (data, dataOf ("urn:another-interface"));

    EXPECT_EQ (plugin->extension_data ("urn:none"), nullptr);
    EXPECT_EQ (window->extension_data ("urn:none"), nullptr);

    throwsItself = true;
    EXPECT_EQ (plugin->extension_data (LV2_STATE__interface), nullptr);
    EXPECT_EQ (window->extension_data (LV2_UI__resize), nullptr);
}
