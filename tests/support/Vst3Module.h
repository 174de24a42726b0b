// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/base/ibstream.h>
#include <pluginterfaces/base/ipluginbase.h>
#include <pluginterfaces/base/smartpointer.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivstmessage.h>

#include <juce_core/juce_core.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <dlfcn.h>
#include <stdexcept>
#include <string>
#include <vector>

/** The built VST3 bundle by its own entry points, with no host class between. What fails here throws. */
class Vst3Module
{
public:
    explicit Vst3Module (const char* path) : library (dlopen (path, RTLD_NOW | RTLD_LOCAL))
    {
        if (library == nullptr)
            throw std::runtime_error (dlerror());

        const auto enter = reinterpret_cast<bool (*) (void*)> (dlsym (library, "ModuleEntry"));
        const auto getFactory =
            reinterpret_cast<Steinberg::IPluginFactory* (*)()> (dlsym (library, "GetPluginFactory"));

        if (enter == nullptr || getFactory == nullptr || ! enter (library))
            throw std::runtime_error ("no VST3 module");

        factory = Steinberg::owned (getFactory());
    }

    ~Vst3Module()
    {
        factory = nullptr;
        reinterpret_cast<bool (*)()> (dlsym (library, "ModuleExit"))();
        dlclose (library);
    }

    Vst3Module (const Vst3Module&) = delete;
    Vst3Module& operator= (const Vst3Module&) = delete;

    Steinberg::IPtr<Steinberg::IPluginFactory> factory;

private:
    void* const library;
};

// Interfaces of this kind are counted and never deleted through their base: theirs has no virtual destructor.
JUCE_BEGIN_IGNORE_WARNINGS_GCC_LIKE ("-Wnon-virtual-dtor")

/** Bytes as a host's stream, whole or in pieces. Counted by nobody: its maker owns it. */
class Vst3Stream : public Steinberg::IBStream, public Steinberg::ISizeableStream
{
public:
    Vst3Stream() = default;
    Vst3Stream (const void* data, std::size_t size)
        : bytes (static_cast<const char*> (data), static_cast<const char*> (data) + size)
    {
    }
    virtual ~Vst3Stream() = default;

    std::vector<char> bytes;
    bool tellsItsSize = true;
    Steinberg::int64 sizeToTell = -1; // the true one
    int longestPiece = 0;             // no limit

    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID id, void** object) override
    {
        *object = nullptr;

        if (std::memcmp (id, Steinberg::IBStream_iid, sizeof (Steinberg::TUID)) == 0)
            *object = static_cast<Steinberg::IBStream*> (this);
        else if (tellsItsSize && std::memcmp (id, Steinberg::ISizeableStream_iid, sizeof (Steinberg::TUID)) == 0)
            *object = static_cast<Steinberg::ISizeableStream*> (this);

        return *object != nullptr ? Steinberg::kResultOk : Steinberg::kNoInterface;
    }

    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

    Steinberg::tresult PLUGIN_API read (void* buffer, Steinberg::int32 wanted, Steinberg::int32* numRead) override
    {
        auto number = std::min (static_cast<std::size_t> (std::max (0, wanted)), bytes.size() - position);

        if (longestPiece > 0)
            number = std::min (number, static_cast<std::size_t> (longestPiece));

        std::copy_n (bytes.begin() + static_cast<std::ptrdiff_t> (position), number, static_cast<char*> (buffer));
        position += number;

        if (numRead != nullptr)
            *numRead = static_cast<Steinberg::int32> (number);

        return Steinberg::kResultOk;
    }

    Steinberg::tresult PLUGIN_API write (void* buffer, Steinberg::int32 number, Steinberg::int32* numWritten) override
    {
        const auto* from = static_cast<const char*> (buffer);
        bytes.insert (bytes.end(), from, from + number);

        if (numWritten != nullptr)
            *numWritten = number;

        return Steinberg::kResultOk;
    }

    Steinberg::tresult PLUGIN_API seek (Steinberg::int64 to, Steinberg::int32 mode, Steinberg::int64* result) override
    {
        if (mode != kIBSeekSet || to < 0 || to > static_cast<Steinberg::int64> (bytes.size()))
            return Steinberg::kInvalidArgument;

        position = static_cast<std::size_t> (to);
        return result != nullptr ? tell (result) : Steinberg::kResultOk;
    }

    Steinberg::tresult PLUGIN_API tell (Steinberg::int64* result) override
    {
        *result = static_cast<Steinberg::int64> (position);
        return Steinberg::kResultOk;
    }

    Steinberg::tresult PLUGIN_API getStreamSize (Steinberg::int64& size) override
    {
        size = sizeToTell >= 0 ? sizeToTell : static_cast<Steinberg::int64> (bytes.size());
        return Steinberg::kResultOk;
    }

    Steinberg::tresult PLUGIN_API setStreamSize (Steinberg::int64) override { return Steinberg::kNotImplemented; }

private:
    std::size_t position = 0;
};

JUCE_END_IGNORE_WARNINGS_GCC_LIKE

/** One instance, both halves, connected as a host connects them. */
class Vst3Instance
{
public:
    explicit Vst3Instance (Vst3Module& module)
    {
        using namespace Steinberg;
        PClassInfo info;

        if (module.factory->getClassInfo (0, &info) != kResultOk)
            throw std::runtime_error ("no class in the module");

        component = make<Vst::IComponent> (module, info.cid, Vst::IComponent_iid);
        TUID controllerId;

        if (component->initialize (nullptr) != kResultOk || component->getControllerClassId (controllerId) != kResultOk)
            throw std::runtime_error ("the component does not start");

        controller = make<Vst::IEditController> (module, controllerId, Vst::IEditController_iid);

        if (controller->initialize (nullptr) != kResultOk)
            throw std::runtime_error ("the controller does not start");

        fromComponent = query<Vst::IConnectionPoint> (*component, Vst::IConnectionPoint_iid);
        fromController = query<Vst::IConnectionPoint> (*controller, Vst::IConnectionPoint_iid);

        // The controller learns of its processor when the two are connected.
        if (fromComponent.get() == nullptr || fromController.get() == nullptr)
            throw std::runtime_error ("component and controller cannot be connected");

        fromComponent->connect (fromController);
        fromController->connect (fromComponent);
    }

    ~Vst3Instance()
    {
        fromController->disconnect (fromComponent);
        fromComponent->disconnect (fromController);
        controller->terminate();
        component->terminate();
    }

    Vst3Instance (const Vst3Instance&) = delete;
    Vst3Instance& operator= (const Vst3Instance&) = delete;

    /** An interface of an object, null where it has none. */
    template <typename Interface>
    static Steinberg::IPtr<Interface> query (Steinberg::FUnknown& object, const Steinberg::TUID id)
    {
        void* found = nullptr;
        return object.queryInterface (id, &found) == Steinberg::kResultOk
                   ? Steinberg::owned (static_cast<Interface*> (found))
                   : nullptr;
    }

    Steinberg::tresult restore (const void* data, std::size_t size)
    {
        Vst3Stream stream (data, size);
        return component->setState (&stream);
    }

    std::vector<char> save()
    {
        Vst3Stream stream;
        return component->getState (&stream) == Steinberg::kResultOk ? stream.bytes : std::vector<char> {};
    }

    Steinberg::IPtr<Steinberg::Vst::IComponent> component;
    Steinberg::IPtr<Steinberg::Vst::IEditController> controller;

private:
    template <typename Interface>
    static Steinberg::IPtr<Interface> make (Vst3Module& module, const Steinberg::TUID classId, const Steinberg::TUID id)
    {
        void* made = nullptr;

        if (module.factory->createInstance (classId, id, &made) != Steinberg::kResultOk)
            throw std::runtime_error ("the factory makes no instance");

        return Steinberg::owned (static_cast<Interface*> (made));
    }

    Steinberg::IPtr<Steinberg::Vst::IConnectionPoint> fromComponent, fromController;
};

/** The instance at work: stereo, 48 kHz, in blocks of what stands in `in`. */
class Vst3Player
{
public:
    static constexpr int blockLength = 512;

    explicit Vst3Player (Vst3Instance& instanceToPlay)
        : instance (instanceToPlay), processor (Vst3Instance::query<Steinberg::Vst::IAudioProcessor> (
                                         *instance.component, Steinberg::Vst::IAudioProcessor_iid))
    {
        using namespace Steinberg;
        Vst::ProcessSetup setup { Vst::kRealtime, Vst::kSample32, blockLength, 48000.0 };

        for (const auto direction : { Vst::kInput, Vst::kOutput })
            if (instance.component->activateBus (Vst::kAudio, direction, 0, true) != kResultOk)
                throw std::runtime_error ("the component has no stereo bus");

        if (processor.get() == nullptr || processor->setupProcessing (setup) != kResultOk
            || instance.component->setActive (true) != kResultOk)
            throw std::runtime_error ("the component cannot play");

        processor->setProcessing (true);
    }

    ~Vst3Player()
    {
        processor->setProcessing (false);
        instance.component->setActive (false);
    }

    Vst3Player (const Vst3Player&) = delete;
    Vst3Player& operator= (const Vst3Player&) = delete;

    void run()
    {
        using namespace Steinberg;
        float* inputs[] = { in[0].data(), in[1].data() };
        float* outputs[] = { out[0].data(), out[1].data() };
        Vst::AudioBusBuffers input, output;
        input.numChannels = output.numChannels = 2;
        input.channelBuffers32 = inputs;
        output.channelBuffers32 = outputs;

        Vst::ProcessData data;
        data.processMode = Vst::kRealtime;
        data.symbolicSampleSize = Vst::kSample32;
        data.numSamples = blockLength;
        data.numInputs = data.numOutputs = 1;
        data.inputs = &input;
        data.outputs = &output;
        processor->process (data);
    }

    int latency() { return static_cast<int> (processor->getLatencySamples()); }

    std::array<std::array<float, blockLength>, 2> in {}, out {};

private:
    Vst3Instance& instance;
    const Steinberg::IPtr<Steinberg::Vst::IAudioProcessor> processor;
};
