// SPDX-License-Identifier: GPL-3.0-or-later
// Sessions as a VST3 host hands them back to the built bundle: whole, damaged, or made up.
#include "support/Vst3Module.h"

#include "processor/CorvaneQ7AudioProcessor.h"

#include <gtest/gtest.h>

#include <new>

namespace
{
using namespace Steinberg;

using Bytes = std::vector<char>;

constexpr int tagLength = 15,
              sizeLength = 8; // at the end of a session: "JUCEPrivateData", and ahead of it its content's size

class Vst3Sessions : public ::testing::Test
{
protected:
    Vst3Sessions()
    {
        // What the bundle saves by itself, behind a round through it: its frequencies then come back to the last bit.
        before = instance.save();

        CorvaneQ7AudioProcessor engine;
        engine.setParameter (0, 1.0f);
        engine.setParameter (36, 0.25f);
        juce::MemoryBlock block;
        engine.getStateInformation (block);
        EXPECT_EQ (instance.restore (block.getData(), block.getSize()), kResultOk);
        session = instance.save();
        EXPECT_NE (session, before);

        ownLength = 8 + static_cast<std::size_t> (juce::ByteOrder::littleEndianInt (session.data() + 4)) + 1;
        EXPECT_LT (ownLength, session.size());
    }

    /** What the bundle holds after it was given these bytes, on top of the state `before`. */
    Bytes after (const Bytes& bytes)
    {
        EXPECT_EQ (instance.restore (before.data(), before.size()), kResultOk);
        const Bytes exact (bytes); // memory of its own length
        instance.restore (exact.data(), exact.size());
        return instance.save();
    }

    Bytes withBit (std::size_t byte, int bit) const
    {
        auto damaged = session;
        damaged[byte] = static_cast<char> (damaged[byte] ^ (1 << bit));
        return damaged;
    }

    Vst3Module module { CORVANE_VST3_MODULE };
    Vst3Instance instance { module };
    Bytes before, session;
    std::size_t ownLength = 0;
};
} // namespace

TEST_F (Vst3Sessions, ComeBackWhole) { EXPECT_EQ (after (session), session); }

TEST_F (Vst3Sessions, KeepTheHostsBypass)
{
    // The wrapper keeps it as one byte of its own section: 2 on, 3 off.
    auto bypassed = session;
    const auto marker = session.size() - tagLength - sizeLength - 2;
    ASSERT_EQ (bypassed[marker], 3);
    bypassed[marker] = 2;

    EXPECT_EQ (after (bypassed), bypassed);
    EXPECT_EQ (after (session), session);
}

TEST_F (Vst3Sessions, ComeBackWithAnyBitOfTheSizeFlipped)
{
    for (std::size_t byte = 0; byte < sizeLength; ++byte)
        for (int bit = 0; bit < 8; ++bit)
            EXPECT_EQ (after (withBit (session.size() - tagLength - sizeLength + byte, bit)), session)
                << "byte " << byte << ", bit " << bit;
}

TEST_F (Vst3Sessions, ComeBackWithAnyBitOfTheTagFlipped)
{
    for (std::size_t byte = 0; byte < tagLength; ++byte)
        for (int bit = 0; bit < 8; ++bit)
            EXPECT_EQ (after (withBit (session.size() - tagLength + byte, bit)), session)
                << "byte " << byte << ", bit " << bit;
}

TEST_F (Vst3Sessions, ComeBackWithAnyBitOfTheWrappersSectionFlipped)
{
    for (auto byte = ownLength; byte < session.size() - tagLength - sizeLength; ++byte)
        for (int bit = 0; bit < 8; ++bit)
        {
            const auto held = after (withBit (byte, bit));
            ASSERT_EQ (held.size(), session.size());
            EXPECT_TRUE (
                std::equal (held.begin(), held.begin() + static_cast<std::ptrdiff_t> (ownLength), session.begin()))
                << "byte " << byte << ", bit " << bit;
        }
}

TEST_F (Vst3Sessions, CutAnywhereDoWhatTheEngineAloneDoesWithThem)
{
    CorvaneQ7AudioProcessor engine;

    for (std::size_t length = 0; length < session.size(); ++length)
    {
        const Bytes cut (session.begin(), session.begin() + static_cast<std::ptrdiff_t> (length));
        const auto held = after (cut);

        juce::MemoryBlock own;
        engine.setStateInformation (before.data(), static_cast<int> (before.size()));
        engine.setStateInformation (cut.data(), static_cast<int> (cut.size()));
        engine.getStateInformation (own);

        ASSERT_GT (held.size(), own.getSize()) << length << " bytes";
        EXPECT_EQ (std::memcmp (held.data(), own.getData(), own.getSize()), 0) << length << " bytes";

        // Behind the last sign of the text nothing is needed: there stand a zero and the wrapper's section.
        EXPECT_TRUE (length < ownLength - 1 || held == session) << length << " bytes";
    }
}

TEST_F (Vst3Sessions, OfTheWrappersSectionAloneChangeNothing)
{
    const auto section = static_cast<std::ptrdiff_t> (ownLength);

    for (auto start = section; start <= static_cast<std::ptrdiff_t> (session.size()); ++start)
        EXPECT_EQ (after (Bytes (session.begin() + start, session.end())), before) << "from byte " << start;
}

// A tree of values nested without end would take the stack, a long list in it the memory.
TEST_F (Vst3Sessions, WithOtherPrivateDataKeepTheHostsBypassAsItIs)
{
    const std::string tag = "JUCEPrivateData";
    const Bytes own (session.begin(), session.begin() + static_cast<std::ptrdiff_t> (ownLength));

    const std::string nested = tag + std::string ("\0\0\1\1", 4); // no properties, one child, and again
    std::string deep;

    for (int i = 0; i < 100000; ++i)
        deep += std::string ("x\0\0\1\1", 5);

    const auto list = tag + std::string ("\0\4\xff\xff\xff\x7f", 6); // two thousand million properties

    for (const auto& content : { nested, deep, list, std::string(), std::string (70000, 'x') })
    {
        auto bytes = own;
        bytes.insert (bytes.end(), 8, '\0');
        bytes.insert (bytes.end(), content.begin(), content.end());

        for (int i = 0; i < sizeLength; ++i)
            bytes.push_back (static_cast<char> ((content.size() >> (8 * i)) & 0xff));

        bytes.insert (bytes.end(), tag.begin(), tag.end());
        EXPECT_EQ (after (bytes), session) << content.size() << " bytes of content";
    }
}

TEST_F (Vst3Sessions, ComeBackFromAnyKindOfStream)
{
    for (const auto tellsItsSize : { true, false })
        for (const auto piece : { 0, 1, 7, 100, 1000 })
            for (const auto toldTooMuch : { 0, 1, 100000, 99000000 })
            {
                ASSERT_EQ (instance.restore (before.data(), before.size()), kResultOk);
                Vst3Stream stream (session.data(), session.size());
                stream.tellsItsSize = tellsItsSize;
                stream.longestPiece = piece;
                stream.sizeToTell = static_cast<int64> (session.size()) + toldTooMuch;
                EXPECT_EQ (instance.component->setState (&stream), kResultOk);
                EXPECT_EQ (instance.save(), session)
                    << "size " << tellsItsSize << ", pieces of " << piece << ", " << toldTooMuch << " too much";
            }
}

TEST_F (Vst3Sessions, LetNoExceptionOut)
{
    struct Failing : Vst3Stream
    {
        tresult PLUGIN_API read (void*, int32, int32*) override { throw std::bad_alloc(); }
        tresult PLUGIN_API write (void*, int32, int32*) override { throw std::bad_alloc(); }
    };

    Failing stream;
    stream.bytes = session;
    EXPECT_NO_THROW (EXPECT_NE (instance.component->setState (&stream), kResultOk));
    EXPECT_NO_THROW (EXPECT_NE (instance.component->getState (&stream), kResultOk));
    EXPECT_EQ (after (session), session);
}
