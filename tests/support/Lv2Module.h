// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

/** The built LV2 bundle by its own entry points, with no host class between. What fails here throws. */
class Lv2Module
{
public:
    explicit Lv2Module (const char* path) : library (dlopen (path, RTLD_NOW | RTLD_LOCAL))
    {
        if (library == nullptr)
            throw std::runtime_error (dlerror());

        const auto entry = reinterpret_cast<LV2_Descriptor_Function> (dlsym (library, "lv2_descriptor"));
        descriptor = entry != nullptr ? entry (0) : nullptr;

        if (descriptor == nullptr)
            throw std::runtime_error ("no LV2 module");
    }

    ~Lv2Module() { dlclose (library); }

    Lv2Module (const Lv2Module&) = delete;
    Lv2Module& operator= (const Lv2Module&) = delete;

    const LV2_Descriptor* descriptor = nullptr;

private:
    void* const library;
};

/** One instance with its ports connected, stereo, 48 kHz. */
class Lv2Instance
{
public:
    static constexpr int blockLength = 512;

    explicit Lv2Instance (Lv2Module& module) : descriptor (*module.descriptor)
    {
        const LV2_Options_Option options[] = { { LV2_OPTIONS_INSTANCE, 0, urid (LV2_BUF_SIZE__maxBlockLength),
                                                 sizeof (int32_t), urid (LV2_ATOM__Int), &longestBlock },
                                               { LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr } };
        const LV2_Feature mapFeature { LV2_URID__map, &map };
        const LV2_Feature boundedFeature { LV2_BUF_SIZE__boundedBlockLength, nullptr };
        const LV2_Feature optionsFeature { LV2_OPTIONS__options, const_cast<LV2_Options_Option*> (options) };
        const LV2_Feature* const features[] = { &mapFeature, &boundedFeature, &optionsFeature, nullptr };

        handle = descriptor.instantiate (&descriptor, 48000.0, "", features);
        state = static_cast<const LV2_State_Interface*> (descriptor.extension_data (LV2_STATE__interface));

        if (handle == nullptr || state == nullptr)
            throw std::runtime_error ("no instance, or none with a state");

        void* const ports[] = { in[0].data(), in[1].data(), out[0].data(), out[1].data(), &eventsIn,
                                &eventsOut,   &latency,     &freeWheeling, &enabled };

        for (uint32_t port = 0; port < std::size (ports); ++port)
            descriptor.connect_port (handle, port, ports[port]);

        descriptor.activate (handle);
    }

    ~Lv2Instance()
    {
        descriptor.deactivate (handle);
        descriptor.cleanup (handle);
    }

    Lv2Instance (const Lv2Instance&) = delete;
    Lv2Instance& operator= (const Lv2Instance&) = delete;

    uint32_t urid (const char* uri)
    {
        return uris.emplace (uri, static_cast<uint32_t> (uris.size() + 1)).first->second;
    }

    /** A block of what stands in `in`. */
    void run()
    {
        eventsIn.atom = { sizeof (LV2_Atom_Sequence_Body), urid (LV2_ATOM__Sequence) };
        eventsOut.atom = { sizeof (eventsOut.room), urid (LV2_ATOM__Chunk) };
        descriptor.run (handle, blockLength);
    }

    /** Restores from the property under which the bundle keeps its session, as a host that has saved these bytes does. */
    LV2_State_Status restore (const char* text, std::size_t size, const char* type = LV2_ATOM__String)
    {
        Value value { urid (sessionUri), urid (type), text, size };

        return state->restore (
            handle,
            [] (LV2_State_Handle given, uint32_t key, size_t* valueSize, uint32_t* valueType,
                uint32_t* flags) -> const void*
            {
                const auto& wanted = *static_cast<const Value*> (given);
                *valueSize = wanted.size;
                *valueType = wanted.type;
                *flags = LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE;
                return key == wanted.key ? wanted.data : nullptr;
            },
            &value, 0, nullptr);
    }

    LV2_State_Status restore (const std::string& text) { return restore (text.c_str(), text.size() + 1); }

    /** The session's text as it is saved, without the zero at its end. */
    std::string save()
    {
        std::string text;
        state->save (
            handle,
            [] (LV2_State_Handle given, uint32_t, const void* data, size_t size, uint32_t, uint32_t)
            {
                *static_cast<std::string*> (given) = std::string (static_cast<const char*> (data), size - 1);
                return LV2_STATE_SUCCESS;
            },
            &text, 0, nullptr);
        return text;
    }

    std::array<std::array<float, blockLength>, 2> in {}, out {};
    float latency = -1.0f, freeWheeling = 0.0f, enabled = 1.0f;

    const LV2_Descriptor& descriptor;
    LV2_Handle handle = nullptr;
    const LV2_State_Interface* state = nullptr;

private:
    static constexpr auto sessionUri = "http://corvane.example/plugins/corvane-q7:StateString";

    struct Value
    {
        uint32_t key, type;
        const void* data;
        std::size_t size;
    };

    struct Events
    {
        LV2_Atom atom {};
        std::array<char, 16384> room {}; // above what the bundle asks for
    };

    static LV2_URID mapUri (LV2_URID_Map_Handle given, const char* uri)
    {
        return static_cast<Lv2Instance*> (given)->urid (uri);
    }

    std::map<std::string, uint32_t> uris;
    LV2_URID_Map map { this, mapUri };
    const int32_t longestBlock = blockLength;
    alignas (8) Events eventsIn, eventsOut;
};
