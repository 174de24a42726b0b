// SPDX-License-Identifier: GPL-3.0-or-later
// Hostile sessions through a built bundle, by the interface that a host uses, in a process with limits.
//
//     corvane_bundle_fuzzer vst3|lv2 LIBRARY COUNT FIRST SEED LAST-SESSION-FILE SEED-FILE...
//
// Ends by itself with what was seen, or by a signal: then LAST-SESSION-FILE begins with the number and the length of the
// session that did it, and its bytes follow. COUNT 1 and FIRST that number give the same session again.
#include "fuzz/HostileSessions.h"
#include "support/Lv2Module.h"
#include "support/Vst3Module.h"

#include <juce_events/juce_events.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{
constexpr rlim_t memoryLimit = rlim_t { 1 } << 30; // bytes of address space, libraries and stacks included
constexpr rlim_t processorTime = 4 * 60 * 60;      // seconds
constexpr int secondsEach = 2;                     // of that for one session, its block of sound included
constexpr unsigned secondsAsleep = 120;            // of the clock: by then it waits for something that never comes
constexpr int playEvery = 16, checkEvery = 64;     // sessions: a block of sound after, a round through save and restore
constexpr int mostRounds = 8;

/** A file that holds the session at work whatever becomes of this process. */
class LastSession
{
public:
    explicit LastSession (const char* path) : file (::open (path, O_RDWR | O_CREAT | O_TRUNC, 0644))
    {
        if (file < 0 || ::ftruncate (file, room) != 0)
            throw std::runtime_error (std::string ("cannot write ") + path);

        text = static_cast<char*> (::mmap (nullptr, room, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));

        if (text == MAP_FAILED)
            throw std::runtime_error ("cannot map the file of the last session");
    }

    ~LastSession()
    {
        ::munmap (text, room);
        ::close (file);
    }

    /** Number, length, a line end, the bytes. */
    void hold (std::uint32_t number, const std::string& session)
    {
        const auto head = std::to_string (number) + " " + std::to_string (session.size()) + "\n";
        const auto length = std::min<std::size_t> (session.size(), room - head.size());
        std::copy (head.begin(), head.end(), text);
        std::copy_n (session.begin(), length, text + head.size());
    }

private:
    static constexpr std::size_t room = std::size_t { 1 } << 20;
    const int file;
    char* text = nullptr;
};

/** A block of sound through a bundle; returns the loudest sample that came out. */
template <typename Player>
float playBlock (Player& player)
{
    for (auto& channel : player.in)
        for (std::size_t i = 0; i < channel.size(); ++i)
            channel[i] = (i & 32) != 0 ? 0.25f : -0.25f;

    player.run();
    float loudest = 0.0f;

    for (const auto& channel : player.out)
        for (const auto sample : channel)
            loudest = std::max (loudest, std::abs (sample));

    return loudest;
}

/** Ends the process when a session takes too long; off takes the limits away. Counted in processor time, so that a machine
    with other work ends nothing. */
void limitTime (bool isOn)
{
    const itimerval time { {}, { isOn ? secondsEach : 0, 0 } };
    ::setitimer (ITIMER_PROF, &time, nullptr);
    ::alarm (isOn ? secondsAsleep : 0);
}

/** What a bundle of either kind is asked to do. */
struct Bundle
{
    virtual ~Bundle() = default;

    /** Returns whether the host was told that it is a session. */
    virtual bool restore (const std::string& session) = 0;
    virtual std::string save() = 0;
    virtual float play() = 0; // the loudest sample
    /** Our own block in what `save` gives. */
    virtual std::string blockIn (const std::string& session) { return session; }
    virtual std::string make (HostileSessions& source, std::uint32_t number) = 0;
};

struct Vst3Bundle final : Bundle
{
    explicit Vst3Bundle (const char* path) : module (path), instance (module), player (instance) {}

    bool restore (const std::string& session) override
    {
        const std::unique_ptr<char[]> exact (new char[session.size()]);
        std::copy (session.begin(), session.end(), exact.get());
        const auto taken = instance.restore (exact.get(), session.size()) == Steinberg::kResultOk;

        // A host gives the same bytes to the other half.
        Vst3Stream forController (exact.get(), session.size()), own (exact.get(), session.size());
        instance.controller->setComponentState (&forController);
        instance.controller->setState (&own);
        return taken;
    }

    std::string save() override
    {
        const auto bytes = instance.save();
        return { bytes.begin(), bytes.end() };
    }

    float play() override { return playBlock (player); }
    std::string make (HostileSessions& source, std::uint32_t number) override { return source.forVst3 (number); }

    Vst3Module module;
    Vst3Instance instance;
    Vst3Player player;
};

struct Lv2Bundle final : Bundle
{
    explicit Lv2Bundle (const char* path) : module (path), instance (module) {}

    bool restore (const std::string& session) override
    {
        const std::unique_ptr<char[]> exact (new char[session.size() + 1]);
        std::copy (session.begin(), session.end(), exact.get());
        exact[session.size()] = '\0';
        return instance.restore (exact.get(), session.size() + 1) == LV2_STATE_SUCCESS;
    }

    std::string save() override { return instance.save(); }

    float play() override { return playBlock (instance); }
    std::string blockIn (const std::string& session) override
    {
        juce::MemoryBlock block;
        block.fromBase64Encoding (session);
        return { static_cast<const char*> (block.getData()), block.getSize() };
    }

    std::string make (HostileSessions& source, std::uint32_t number) override { return source.forLv2 (number); }

    Lv2Module module;
    Lv2Instance instance;
};

std::string contentOf (const char* path)
{
    std::ifstream stream (path, std::ios::binary);

    if (! stream)
        throw std::runtime_error (std::string ("cannot read ") + path);

    return { std::istreambuf_iterator<char> (stream), {} };
}

int run (int argc, char** argv)
{
    const std::string kind = argv[1];
    const auto count = static_cast<std::uint32_t> (std::stoul (argv[3]));
    const auto first = static_cast<std::uint32_t> (std::stoul (argv[4]));
    const auto seed = static_cast<std::uint32_t> (std::stoul (argv[5]));
    LastSession last (argv[6]);

    // No dump of what is stopped: the session lies in its file.
    for (const auto& [what, most] : { std::pair { RLIMIT_AS, memoryLimit }, std::pair { RLIMIT_CPU, processorTime },
                                      std::pair { RLIMIT_CORE, rlim_t { 0 } } })
    {
        const rlimit limit { most, most };

        if (::setrlimit (what, &limit) != 0)
            throw std::runtime_error ("cannot set the limits");
    }

    std::unique_ptr<Bundle> bundle;

    if (kind == "vst3")
        bundle = std::make_unique<Vst3Bundle> (argv[2]);
    else
        bundle = std::make_unique<Lv2Bundle> (argv[2]);

    const auto clean = bundle->save();
    std::vector<std::string> seeds;

    for (int i = 7; i < argc; ++i)
        seeds.push_back (contentOf (argv[i]));

    // What the wrapper itself writes behind a block of ours, whose header tells its length.
    std::string section;

    if (kind == "vst3")
        section = clean.substr (8 + static_cast<std::size_t> (juce::ByteOrder::littleEndianInt (clean.data() + 4)) + 1);

    HostileSessions source (seeds, section, seed);
    std::uint32_t taken = 0, changed = 0, exceptions = 0, unstable = 0, belowRange = 0;
    double longest = 0.0;
    std::uint32_t longestNumber = 0;
    auto held = clean;
    const auto start = std::chrono::steady_clock::now();

    for (auto number = first; number < first + count; ++number)
    {
        const auto session = bundle->make (source, number);
        last.hold (number, session);
        limitTime (true);
        const auto before = std::chrono::steady_clock::now();

        try
        {
            taken += bundle->restore (session) ? 1 : 0;

            if (number % playEvery == 0)
                bundle->play();

            if (number % checkEvery == 0)
            {
                // What stands in the bundle now is a session like any other and comes back as it is, once frequencies have
                // lost their last bits on the way through the text. A choice from below its range nears it by a step a
                // time, however far it is: it is counted and not judged.
                auto saved = bundle->save();
                changed += saved != held ? 1 : 0;
                auto settled = false;

                for (int round = 0; round < mostRounds && ! settled; ++round)
                {
                    const auto restored = bundle->restore (saved);
                    held = bundle->save();
                    settled = restored && held == saved;
                    saved = held;
                }

                if (! settled && bundle->blockIn (held).find ("=\"-") != std::string::npos)
                {
                    ++belowRange;
                }
                else if (! settled)
                {
                    ++unstable;
                    std::printf ("session %u: what it left does not come back\n", number);
                }
            }
        }
        catch (...)
        {
            ++exceptions;
            std::printf ("session %u: an exception left the bundle\n", number);
        }

        limitTime (false);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - before;

        if (time.count() > longest)
        {
            longest = time.count();
            longestNumber = number;
        }
    }

    const std::chrono::duration<double> all = std::chrono::steady_clock::now() - start;

    // It still works: the clean session comes back, and sound runs once what was unbearable has faded.
    bundle->restore (clean);
    auto heals = bundle->save() == clean;
    float loudest = 0.0f;

    for (int block = 0; block < 1000; ++block)
        loudest = bundle->play();

    heals = heals && loudest > 0.1f && loudest < 1.0f;

    rusage usage {};
    ::getrusage (RUSAGE_SELF, &usage);
    std::printf (
        "%s: %u sessions, %u told to be taken, %u of %u looks found other settings, %u exceptions, %u unstable, "
        "%u below a range, %s; "
        "%.0f s, the longest %.0f ms (session %u), %ld MB at most of %ju MB allowed\n",
        kind.c_str(), count, taken, changed, count / checkEvery, exceptions, unstable, belowRange,
        heals ? "then restored" : "NOT RESTORED", all.count(), longest * 1000.0, longestNumber, usage.ru_maxrss / 1024,
        static_cast<std::uintmax_t> (memoryLimit >> 20));
    return exceptions == 0 && unstable == 0 && heals ? 0 : 1;
}
} // namespace

int main (int argc, char** argv)
{
    if (argc < 8)
    {
        std::fprintf (stderr,
                      "corvane_bundle_fuzzer vst3|lv2 LIBRARY COUNT FIRST SEED LAST-SESSION-FILE SEED-FILE...\n");
        return 2;
    }

    try
    {
        const juce::ScopedJuceInitialiser_GUI framework;
        return run (argc, argv);
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "corvane_bundle_fuzzer: %s\n", error.what());
        return 2;
    }
}
