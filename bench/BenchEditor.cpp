// SPDX-License-Identifier: GPL-3.0-or-later
// What the window costs: processor time while it is open, and time until it is there. It wants a screen, so run it as
// tests/support/with_screen.py build/release/bench/corvane_bench_editor
#include "editor/CorvaneQ7Editor.h"
#include "views/MessagePump.h"
#include "views/XErrors.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace
{
using Clock = std::chrono::steady_clock;

double secondsSince (Clock::time_point start) { return std::chrono::duration<double> (Clock::now() - start).count(); }

/** Processor time of all threads of this process, in seconds. The X server's own is not in it. */
double processorSeconds()
{
    rusage usage {};
    ::getrusage (RUSAGE_SELF, &usage);
    const auto seconds = [] (const timeval& time)
    { return static_cast<double> (time.tv_sec) + static_cast<double> (time.tv_usec) * 1.0e-6; };
    return seconds (usage.ru_utime) + seconds (usage.ru_stime);
}

/** Stands in for the audio path: the three meters' readings, new before each of their ticks. */
class Readings : private juce::Timer
{
public:
    explicit Readings (CorvaneQ7AudioProcessor& processorToFeed) : processor (processorToFeed)
    {
        startTimer (MainUI::meterMs);
    }

    bool moving = true;

private:
    void timerCallback() override
    {
        if (! moving)
            return;

        constexpr double swingsPerSecond[] { 0.5, 0.8, 1.1 };
        const auto seconds = secondsSince (start);

        // Gain reduction between none and about 9 dB, the greater part of the scale.
        for (int band = 0; band < CorvaneQ7AudioProcessor::numBands; ++band)
            processor.activeSettings().gainReduction (band) =
                0.675 + 0.325 * std::cos (juce::MathConstants<double>::twoPi * swingsPerSecond[band] * seconds);
    }

    CorvaneQ7AudioProcessor& processor;
    const Clock::time_point start = Clock::now();
};

/** Runs the messages as a host does, asleep in between, and gives the share of one core that the process took, in %. */
double shareOfACore (double seconds)
{
    const auto start = Clock::now();
    const auto before = processorSeconds();

    while (secondsSince (start) < seconds)
        juce::dispatchNextMessageOnSystemQueue (false);

    return 100.0 * (processorSeconds() - before) / secondsSince (start);
}

class Window
{
public:
    explicit Window (CorvaneQ7AudioProcessor& processorToShow)
        : processor (processorToShow), editor (dynamic_cast<CorvaneQ7Editor*> (processor.createEditorIfNeeded()))
    {
    }

    ~Window() { processor.editorBeingDeleted (editor.get()); }

    Window (const Window&) = delete;
    Window& operator= (const Window&) = delete;

    void show()
    {
        editor->addToDesktop (0);
        editor->setVisible (true);
    }

    CorvaneQ7Editor& operator*() noexcept { return *editor; }

private:
    CorvaneQ7AudioProcessor& processor;
    std::unique_ptr<CorvaneQ7Editor> editor;
};

/** Milliseconds from the host's call to a window that is painted whole, in memory. */
double millisecondsToOpen (CorvaneQ7AudioProcessor& processor)
{
    const auto start = Clock::now();
    Window window (processor);
    const auto picture = (*window).createComponentSnapshot ((*window).getLocalBounds());
    return picture.isValid() ? 1000.0 * secondsSince (start) : 0.0;
}

double median (std::vector<double> values)
{
    std::sort (values.begin(), values.end());
    return values[values.size() / 2];
}

void measureOpening()
{
    constexpr int numOpenings = 20;
    constexpr int longPauseMs = 10000; // the framework drops pictures that nobody used for some seconds
    CorvaneQ7AudioProcessor processor;

    const auto first = millisecondsToOpen (processor);
    std::vector<double> again, afterPause;

    for (int i = 0; i < numOpenings; ++i)
    {
        again.push_back (millisecondsToOpen (processor));
        pumpMessages (20);
    }

    for (int i = 0; i < 3; ++i)
    {
        pumpMessages (longPauseMs);
        afterPause.push_back (millisecondsToOpen (processor));
    }

    std::printf ("Opening, from the call to a window painted whole, ms\n");
    std::printf ("  first of the process        %7.1f\n", first);
    std::printf ("  again, median of %d         %7.1f   (longest %.1f)\n", numOpenings, median (again),
                 *std::max_element (again.begin(), again.end()));
    std::printf ("  after 10 s without a window %7.1f   (longest %.1f)\n", median (afterPause),
                 *std::max_element (afterPause.begin(), afterPause.end()));
}

void measureShares (double seconds)
{
    constexpr double settle = 1.5; // s: what opening and closing leave to do
    CorvaneQ7AudioProcessor processor;
    Readings readings (processor);

    shareOfACore (settle);
    const auto closed = shareOfACore (seconds);
    std::printf ("Share of one core, %% (%.0f s each; in brackets less what the process takes without a window)\n",
                 seconds);
    std::printf ("  never opened                %7.2f\n", closed);

    const auto report = [&] (const char* text, float zoom, bool moving)
    {
        processor.uiZoom = zoom;
        readings.moving = moving;
        Window window (processor);
        window.show();
        shareOfACore (settle);
        const auto share = shareOfACore (seconds);
        std::printf ("  %-27s %7.2f   (%.2f)   %d x %d px\n", text, share, share - closed, (*window).getWidth(),
                     (*window).getHeight());
    };

    report ("100 %, three meters moving", 1.0f, true);
    report ("100 %, meters at rest", 1.0f, false);
    report ("70 %, three meters moving", 0.7f, true);
    readings.moving = true;
    shareOfACore (settle);
    const auto after = shareOfACore (seconds);
    std::printf ("  closed again                %7.2f   (%.2f)\n", after, after - closed);
}
} // namespace

int main (int argc, char** argv)
{
    // A home of its own: a user's options would choose another size.
    const auto home = std::filesystem::temp_directory_path() / ("corvane-bench-" + std::to_string (::getpid()));
    std::filesystem::create_directories (home);
    ::setenv ("HOME", home.c_str(), 1);
    ::unsetenv ("XDG_CONFIG_HOME");

    const auto seconds = argc > 1 ? std::max (1.0, std::atof (argv[1])) : 10.0;
    int result = 0;

    {
        const juce::ScopedJuceInitialiser_GUI framework;
        measureOpening();

        if (juce::Desktop::getInstance().getDisplays().displays.isEmpty() || ! XErrors::countInsteadOfEnding())
        {
            std::fprintf (stderr, "no screen: run it under tests/support/with_screen.py\n");
            result = 1;
        }
        else
        {
            measureShares (seconds);
        }
    }

    std::filesystem::remove_all (home);
    return result;
}
