// SPDX-License-Identifier: GPL-3.0-or-later
// Gain reduction as a VST3 host asks for it: through the controller of the built bundle, with no host class between.
#include "processor/CorvaneQ7AudioProcessor.h"

#include <pluginterfaces/base/ipluginbase.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivstmessage.h>

#include <juce_audio_processors/format_types/pslextensions/ipslgainreduction.h>

#include <gtest/gtest.h>

#include <cmath>
#include <dlfcn.h>

namespace
{
using namespace Steinberg;

Presonus::IGainReductionInfo* reportOf (CorvaneQ7AudioProcessor& processor)
{
    void* object = nullptr;
    processor.queryIEditController (Presonus::IGainReductionInfo_iid, &object);
    return static_cast<Presonus::IGainReductionInfo*> (object);
}
} // namespace

TEST (Vst3GainReduction, IsThatOfTheDeepestBandInDecibels)
{
    CorvaneQ7AudioProcessor processor;
    auto* report = reportOf (processor);
    ASSERT_NE (report, nullptr);

    auto& settings = processor.activeSettings();
    settings.lowGainReduction = 0.9;
    settings.midGainReduction = 0.25;
    settings.highGainReduction = 0.5;
    EXPECT_NEAR (report->getGainReductionValueInDb(), 20.0 * std::log10 (0.25), 1.0e-9);
}

TEST (Vst3GainReduction, IsNeverAboveZero)
{
    CorvaneQ7AudioProcessor processor;
    auto& settings = processor.activeSettings();
    settings.lowGainReduction = settings.midGainReduction = settings.highGainReduction = 1.1;
    EXPECT_EQ (reportOf (processor)->getGainReductionValueInDb(), 0.0);
}

TEST (Vst3GainReduction, IsZeroWhileBypassed)
{
    CorvaneQ7AudioProcessor processor;
    processor.activeSettings().midGainReduction = 0.25;
    processor.activeSettings().bypass.setTarget (1.0);
    EXPECT_EQ (reportOf (processor)->getGainReductionValueInDb(), 0.0);
}

TEST (Vst3GainReduction, FollowsTheAudibleSlot)
{
    CorvaneQ7AudioProcessor processor;
    processor.settingsSlots[1].highGainReduction = 0.1;
    EXPECT_EQ (reportOf (processor)->getGainReductionValueInDb(), 0.0);
    processor.selectSlot (1);
    EXPECT_NEAR (reportOf (processor)->getGainReductionValueInDb(), -20.0, 1.0e-9);
}

TEST (Vst3GainReduction, OtherInterfacesAreNotOurs)
{
    CorvaneQ7AudioProcessor processor;
    void* object = &processor;
    EXPECT_NE (processor.queryIEditController (Vst::IEditController_iid, &object), kResultOk);
    EXPECT_EQ (object, nullptr);
}

TEST (Vst3GainReduction, IsAnsweredByTheBundlesController)
{
    auto* module = dlopen (CORVANE_VST3_MODULE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE (module, nullptr) << dlerror();
    const auto moduleEntry = reinterpret_cast<bool (*) (void*)> (dlsym (module, "ModuleEntry"));
    const auto moduleExit = reinterpret_cast<bool (*)()> (dlsym (module, "ModuleExit"));
    const auto getFactory = reinterpret_cast<IPluginFactory* (*)()> (dlsym (module, "GetPluginFactory"));
    ASSERT_TRUE (moduleEntry != nullptr && moduleExit != nullptr && getFactory != nullptr);
    ASSERT_TRUE (moduleEntry (module));

    auto* factory = getFactory();
    ASSERT_NE (factory, nullptr);
    PClassInfo info;
    ASSERT_EQ (factory->getClassInfo (0, &info), kResultOk);

    Vst::IComponent* component = nullptr;
    ASSERT_EQ (factory->createInstance (info.cid, Vst::IComponent_iid, reinterpret_cast<void**> (&component)),
               kResultOk);
    ASSERT_EQ (component->initialize (nullptr), kResultOk);

    TUID controllerId;
    ASSERT_EQ (component->getControllerClassId (controllerId), kResultOk);
    Vst::IEditController* controller = nullptr;
    ASSERT_EQ (factory->createInstance (controllerId, Vst::IEditController_iid, reinterpret_cast<void**> (&controller)),
               kResultOk);
    ASSERT_EQ (controller->initialize (nullptr), kResultOk);

    // The controller learns of its processor when the two are connected.
    Vst::IConnectionPoint *fromComponent = nullptr, *fromController = nullptr;
    ASSERT_EQ (component->queryInterface (Vst::IConnectionPoint_iid, reinterpret_cast<void**> (&fromComponent)),
               kResultOk);
    ASSERT_EQ (controller->queryInterface (Vst::IConnectionPoint_iid, reinterpret_cast<void**> (&fromController)),
               kResultOk);
    fromComponent->connect (fromController);
    fromController->connect (fromComponent);

    Presonus::IGainReductionInfo* report = nullptr;
    ASSERT_EQ (controller->queryInterface (Presonus::IGainReductionInfo_iid, reinterpret_cast<void**> (&report)),
               kResultOk);
    EXPECT_EQ (report->getGainReductionValueInDb(), 0.0); // nothing has run

    fromController->disconnect (fromComponent);
    fromComponent->disconnect (fromController);
    fromController->release();
    fromComponent->release();
    controller->terminate();
    controller->release();
    component->terminate();
    component->release();
    factory->release();
    moduleExit();
    dlclose (module);
}
