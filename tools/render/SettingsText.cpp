// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/SettingsText.h"

#include "parameters/NumberText.h"
#include "parameters/ParameterTable.h"
#include "render/ParameterText.h"
#include "render/RenderError.h"
#include "render/TextFile.h"
#include "settings/Decibels.h"

#include <functional>
#include <map>
#include <sstream>

namespace
{
constexpr int lowestZoomPercent = 70, highestZoomPercent = 100;

// Their names follow those of the controls.
constexpr const char* optionNames[] = { "Calibration", "Oversampling", "UIZoom" };
enum Option : int
{
    calibration = ParameterTable::numParameters,
    oversampling,
    uiZoom
};

[[noreturn]] void refuseToWrite (const std::string& reason)
{
    throw RenderError (ExitStatus::input, "these settings have no text: " + reason);
}

// ---- to text ---------------------------------------------------------------------------------
std::string textOfControl (CorvaneQ7AudioProcessor& processor, int index)
{
    const auto* identifier = ParameterTable::rows[index].identifier;
    const auto x = processor.getParameter (index);

    // A panel cuts a share off, so that the 53% which somebody typed reads 52%; a text that is read again rounds it.
    const auto text = ParameterTable::rows[index].form.kind == ParameterForm::Kind::percent
                          ? NumberText::fixed (100.0 * static_cast<double> (x), 0) + "%"
                          : processor.getParameterText (index);

    try
    {
        ParameterText::toNormalised (index, text.toStdString());
    }
    catch (const TextError&)
    {
        refuseToWrite (std::string (identifier) + " stands at " + NumberText::fixed (x, 6).toStdString()
                       + ", out of its range");
    }

    return text.toStdString();
}

std::string calibrationText (const CorvaneQ7AudioProcessor& processor)
{
    const auto gain =
        processor.settingsSlots[processor.activeSlot].calibrationGain / UserDefaults::calibrationGainFor (0.0);
    const auto db = std::round (10.0 * Decibels::fromGain (gain)) / 10.0;
    const auto text = NumberText::fixed (db, std::floor (db) < db ? 1 : 0).toStdString();

    if (! (db >= UserDefaults::lowestCalibrationDb && db <= UserDefaults::highestCalibrationDb))
        refuseToWrite ("Calibration stands at " + text + " dBu, out of its range");

    return text + " dBu";
}

std::string factorText (const CorvaneQ7AudioProcessor& processor)
{
    // What a state asks for beyond the ends is built as the ends.
    return std::to_string (juce::jlimit (1, UserDefaults::maxOversampling, processor.oversamplingRequested.load()));
}

std::string zoomText (const CorvaneQ7AudioProcessor& processor)
{
    const auto percent = NumberText::toInt (std::round (100.0 * static_cast<double> (processor.uiZoom)));
    return std::to_string (juce::jlimit (lowestZoomPercent, highestZoomPercent, percent)) + "%";
}

const char* sectionBefore (int index) noexcept
{
    switch (index)
    {
        case 0: return "Low band";
        case ParameterTable::numBandControls: return "Mid band";
        case 2 * ParameterTable::numBandControls: return "High band";
        case ParameterTable::numBands* ParameterTable::numBandControls: return "The whole unit";
        default: return nullptr;
    }
}

// ---- from text -------------------------------------------------------------------------------
using Change = std::function<void (CorvaneQ7AudioProcessor&)>;

double limitedNumber (const std::string& name, const std::string& text, const std::string& unit, double lowest,
                      double highest, const std::string& example)
{
    const auto value = TypedText::numberWithUnit (text, unit);

    if (! value || ! (*value >= lowest && *value <= highest))
        throw TextError (name + " takes a number from " + NumberText::fixed (lowest, 0).toStdString() + " to "
                         + NumberText::fixed (highest, 0).toStdString() + ", such as " + example + ", not "
                         + TypedText::quoted (text));

    return *value;
}

int factorFrom (const std::string& text)
{
    const auto factor = TypedText::wholeNumber (text);

    if (! factor || *factor < 1 || *factor > UserDefaults::maxOversampling)
        throw TextError ("Oversampling takes a whole number from 1 to " + std::to_string (UserDefaults::maxOversampling)
                         + ", not " + TypedText::quoted (text));

    return static_cast<int> (*factor);
}

Change changeTo (int index, const std::string& text)
{
    switch (index)
    {
        case calibration:
        {
            const auto db = limitedNumber ("Calibration", text, "dBu", UserDefaults::lowestCalibrationDb,
                                           UserDefaults::highestCalibrationDb, "22 dBu");
            return [db] (auto& processor) { processor.setCalibration (db); };
        }

        case oversampling:
            return [factor = factorFrom (text)] (auto& processor) { processor.setOversampling (factor); };

        case uiZoom:
        {
            const auto percent = limitedNumber ("UIZoom", text, "%", lowestZoomPercent, highestZoomPercent, "100%");
            return [percent] (auto& processor) { processor.uiZoom = static_cast<float> (0.01 * percent); };
        }

        default:
            return [index, x = ParameterText::toNormalised (index, text)] (auto& processor)
            { processor.setParameter (index, x); };
    }
}

class Reader
{
public:
    Change changeOf (const TextFile::Line& line)
    {
        const auto sides = TypedText::splitAt ('=', line.text);

        if (! sides)
            throw TextError ("it is not of the form Identifier = text");

        const auto index = ParameterText::find (sides->first, names);

        if (const auto [earlier, isNew] = lineOf.emplace (index, line.number); ! isNew)
            throw TextError (sides->first + " stands in line " + std::to_string (earlier->second) + " already");

        return changeTo (index, sides->second);
    }

private:
    static std::vector<std::string> allNames()
    {
        auto all = ParameterText::identifiers();
        all.insert (all.end(), std::begin (optionNames), std::end (optionNames));
        return all;
    }

    const std::vector<std::string> names = allNames();
    std::map<int, int> lineOf; // by index
};
} // namespace

std::string SettingsText::textOf (CorvaneQ7AudioProcessor& processor)
{
    std::ostringstream text;
    text << "# Corvane Q7 settings. A line that is missing leaves its control where it is.\n";

    for (int i = 0; i < ParameterTable::numParameters; ++i)
    {
        if (const auto* section = sectionBefore (i))
            text << "\n# " << section << '\n';

        text << ParameterTable::rows[i].identifier << " = " << textOfControl (processor, i) << '\n';
    }

    text << "\n# Options\n"
         << "Calibration = " << calibrationText (processor) << '\n'
         << "Oversampling = " << factorText (processor) << '\n'
         << "UIZoom = " << zoomText (processor) << '\n';
    return text.str();
}

void SettingsText::apply (const std::filesystem::path& file, CorvaneQ7AudioProcessor& processor)
{
    Reader reader;
    std::vector<Change> changes;

    TextFile::readLines (file, [&] (const TextFile::Line& line) { changes.push_back (reader.changeOf (line)); });

    for (const auto& change : changes)
        change (processor);
}
