// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/ParameterTable.h"

#include "parameters/BandParameters.h"
#include "parameters/GlobalParameters.h"
#include "processor/CorvaneQ7AudioProcessor.h"

#include <cstring>

namespace
{
/** Hands objects to the processor in the order of the table. */
class Registrar
{
public:
    explicit Registrar (CorvaneQ7AudioProcessor& processorToUse)
        : processor (processorToUse),
          finiteSteps (processor.wrapperType == juce::AudioProcessor::wrapperType_AAX
                       || processor.wrapperType == juce::AudioProcessor::wrapperType_Standalone)
    {
    }

    template <typename Leaf>
    void add()
    {
        add<Leaf> (finiteSteps);
    }

    /** Enumerations and switches have steps in any case. */
    template <typename Leaf>
    void addStepped()
    {
        add<Leaf> (true);
    }

    template <int b>
    void addBand()
    {
        addStepped<MeterParameter<b>>();
        addStepped<InParameter<b>>();
        addStepped<SoloParameter<b>>();
        add<MidSideParameter<b>>();
        add<GainParameter<b>>();
        addStepped<RatioParameter<b>>();
        add<ThresholdParameter<b>>();
        addStepped<AttackParameter<b>>();
        addStepped<RecoveryParameter<b>>();
    }

    void addBypass()
    {
        const auto& row = nextRow();
        processor.addParameter (new BypassParameter (row.identifier, row.name, processor.activeSettings()));
    }

private:
    template <typename Leaf>
    void add (bool steps)
    {
        const auto& row = nextRow();
        processor.addParameter (new Leaf (row.identifier, row.name, processor.activeSettings(), steps));
    }

    const ParameterTable::Row& nextRow() noexcept { return ParameterTable::rows[next++]; }

    CorvaneQ7AudioProcessor& processor;
    const bool finiteSteps;
    int next = 0;
};
} // namespace

int ParameterTable::indexOf (const char* identifier) noexcept
{
    for (int i = 0; i < numParameters; ++i)
        if (std::strcmp (rows[i].identifier, identifier) == 0)
            return i;

    return -1;
}

void ParameterTable::addParametersTo (CorvaneQ7AudioProcessor& processor)
{
    Registrar registrar (processor);

    registrar.addBand<0>();
    registrar.addBand<1>();
    registrar.addBand<2>();
    registrar.add<MixParameter>();
    registrar.add<HPFParameter>();
    registrar.add<MasterGainParameter>();
    registrar.add<LowXOverParameter>();
    registrar.add<HighXOverParameter>();
    registrar.addStepped<NukeParameter>();
    registrar.addStepped<NiveauParameter>();
    registrar.addStepped<LinkParameter>();
    registrar.addBypass();
    registrar.add<InLevelParameter>();
    registrar.add<OutLevelParameter>();
}
