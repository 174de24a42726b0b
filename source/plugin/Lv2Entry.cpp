// SPDX-License-Identifier: GPL-3.0-or-later
// What an LV2 host finds in the bundle: the framework's functions, each behind a guard that lets no exception out. Hosts
// of this format are programs in C as often as not, and an exception that reaches one ends it.
#include "plugin/ExceptionGuard.h"

#include <cstring>

// From the framework's modules, which ship the LV2 headers.
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/state/state.h>
#include <lv2/ui/ui.h>

namespace juce::lv2_client
{
// The framework's own entries, by the names that tools/wrappers gives them.
const LV2_Descriptor* frameworkDescriptor (uint32_t index);
const LV2UI_Descriptor* frameworkUIDescriptor (uint32_t index);
} // namespace juce::lv2_client

namespace
{
using ExceptionGuard::call;

const void* dataOf (const LV2_Descriptor& descriptor, const char* uri) { return descriptor.extension_data (uri); }
const void* dataOf (const LV2UI_Descriptor& descriptor, const char* uri) { return descriptor.extension_data (uri); }

// ---- the plug-in ------------------------------------------------------------------------------
const LV2_Descriptor& framework() { return *juce::lv2_client::frameworkDescriptor (0); }

template <typename Interface>
const Interface& frameworks (const char* uri)
{
    return *static_cast<const Interface*> (dataOf (framework(), uri));
}

LV2_Handle instantiate (const LV2_Descriptor*, double rate, const char* bundle, const LV2_Feature* const* features)
{
    return call (LV2_Handle {}, [&] { return framework().instantiate (&framework(), rate, bundle, features); });
}

void connectPort (LV2_Handle instance, uint32_t port, void* data)
{
    call ([&] { framework().connect_port (instance, port, data); });
}

void activate (LV2_Handle instance)
{
    call ([&] { framework().activate (instance); });
}

void run (LV2_Handle instance, uint32_t numFrames)
{
    call ([&] { framework().run (instance, numFrames); });
}

void deactivate (LV2_Handle instance)
{
    call ([&] { framework().deactivate (instance); });
}

void cleanup (LV2_Handle instance)
{
    call ([&] { framework().cleanup (instance); });
}

LV2_State_Status save (LV2_Handle instance, LV2_State_Store_Function store, LV2_State_Handle handle, uint32_t flags,
                       const LV2_Feature* const* features)
{
    return call (LV2_STATE_ERR_UNKNOWN,
                 [&]
                 {
                     const auto& state = frameworks<LV2_State_Interface> (LV2_STATE__interface);
                     return state.save (instance, store, handle, flags, features);
                 });
}

LV2_State_Status restore (LV2_Handle instance, LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                          uint32_t flags, const LV2_Feature* const* features)
{
    return call (LV2_STATE_ERR_UNKNOWN,
                 [&]
                 {
                     const auto& state = frameworks<LV2_State_Interface> (LV2_STATE__interface);
                     return state.restore (instance, retrieve, handle, flags, features);
                 });
}

/** By which the framework's build step has the bundle describe itself. */
struct Recall
{
    int (*recall) (const char* libraryPath);
};

constexpr auto recallUri = "https://lv2-extensions.juce.com/turtle_recall";

int recall (const char* libraryPath)
{
    return call (1, [&] { return frameworks<Recall> (recallUri).recall (libraryPath); });
}

const void* extensionData (const char* uri)
{
    static const LV2_State_Interface guardedState { save, restore };
    static const Recall guardedRecall { recall };

    return call (static_cast<const void*> (nullptr),
                 [uri]() -> const void*
                 {
                     const auto* data = dataOf (framework(), uri);
                     const auto is = [&] (const char* known) { return std::strcmp (uri, known) == 0; };

                     if (data != nullptr && is (LV2_STATE__interface))
                         return &guardedState;

                     return data != nullptr && is (recallUri) ? &guardedRecall : data;
                 });
}

// ---- its window ---------------------------------------------------------------------------------
const LV2UI_Descriptor& frameworkUI() { return *juce::lv2_client::frameworkUIDescriptor (0); }

template <typename Interface>
const Interface& frameworkUIs (const char* uri)
{
    return *static_cast<const Interface*> (dataOf (frameworkUI(), uri));
}

LV2UI_Handle instantiateUI (const LV2UI_Descriptor*, const char* plugin, const char* bundle, LV2UI_Write_Function write,
                            LV2UI_Controller controller, LV2UI_Widget* widget, const LV2_Feature* const* features)
{
    return call (
        LV2UI_Handle {}, [&]
        { return frameworkUI().instantiate (&frameworkUI(), plugin, bundle, write, controller, widget, features); });
}

void cleanupUI (LV2UI_Handle ui)
{
    call ([&] { frameworkUI().cleanup (ui); });
}

void portEvent (LV2UI_Handle ui, uint32_t port, uint32_t size, uint32_t protocol, const void* data)
{
    call ([&] { frameworkUI().port_event (ui, port, size, protocol, data); });
}

int resizeUI (LV2UI_Feature_Handle ui, int width, int height)
{
    return call (1, [&] { return frameworkUIs<LV2UI_Resize> (LV2_UI__resize).ui_resize (ui, width, height); });
}

// Anything but 0 would tell the host that the window is closed: a missed turn is no reason.
int idle (LV2UI_Handle ui)
{
    return call (0, [&] { return frameworkUIs<LV2UI_Idle_Interface> (LV2_UI__idleInterface).idle (ui); });
}

uint32_t getOptions (LV2_Handle ui, LV2_Options_Option* options)
{
    return call (uint32_t { LV2_OPTIONS_ERR_UNKNOWN },
                 [&] { return frameworkUIs<LV2_Options_Interface> (LV2_OPTIONS__interface).get (ui, options); });
}

uint32_t setOptions (LV2_Handle ui, const LV2_Options_Option* options)
{
    return call (uint32_t { LV2_OPTIONS_ERR_UNKNOWN },
                 [&] { return frameworkUIs<LV2_Options_Interface> (LV2_OPTIONS__interface).set (ui, options); });
}

const void* extensionDataUI (const char* uri)
{
    static const LV2UI_Resize guardedResize { nullptr, resizeUI };
    static const LV2UI_Idle_Interface guardedIdle { idle };
    static const LV2_Options_Interface guardedOptions { getOptions, setOptions };

    return call (static_cast<const void*> (nullptr),
                 [uri]() -> const void*
                 {
                     const auto* data = dataOf (frameworkUI(), uri);
                     const auto is = [&] (const char* known)
                     { return data != nullptr && std::strcmp (uri, known) == 0; };

                     if (is (LV2_UI__resize))
                         return &guardedResize;

                     if (is (LV2_UI__idleInterface))
                         return &guardedIdle;

                     return is (LV2_OPTIONS__interface) ? &guardedOptions : data;
                 });
}
} // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor (uint32_t index)
{
    return call (static_cast<const LV2_Descriptor*> (nullptr),
                 [index]() -> const LV2_Descriptor*
                 {
                     if (juce::lv2_client::frameworkDescriptor (index) == nullptr)
                         return nullptr;

                     static const LV2_Descriptor descriptor { framework().URI, instantiate, connectPort,  activate, run,
                                                              deactivate,      cleanup,     extensionData };
                     return &descriptor;
                 });
}

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor (uint32_t index)
{
    return call (static_cast<const LV2UI_Descriptor*> (nullptr),
                 [index]() -> const LV2UI_Descriptor*
                 {
                     if (juce::lv2_client::frameworkUIDescriptor (index) == nullptr)
                         return nullptr;

                     static const LV2UI_Descriptor descriptor { frameworkUI().URI, instantiateUI, cleanupUI, portEvent,
                                                                extensionDataUI };
                     return &descriptor;
                 });
}
