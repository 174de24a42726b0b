// SPDX-License-Identifier: GPL-3.0-or-later
// Sessions as an LV2 host hands them back to the built bundle: whole, damaged, or made up.
#include "support/Lv2Module.h"

#include "processor/CorvaneQ7AudioProcessor.h"

#include <gtest/gtest.h>

#include <new>

namespace
{
class Lv2Sessions : public ::testing::Test
{
protected:
    Lv2Sessions()
    {
        before = instance.save();

        CorvaneQ7AudioProcessor engine;
        engine.setParameter (0, 1.0f);
        engine.setParameter (36, 0.25f);
        juce::MemoryBlock block;
        engine.getStateInformation (block);
        EXPECT_EQ (instance.restore (block.toBase64Encoding().toStdString()), LV2_STATE_SUCCESS);
        session = instance.save();
        EXPECT_NE (session, before);
    }

    /** Whether the bundle says that these bytes are no session, and goes on with what it had. */
    ::testing::AssertionResult refuses (const char* text, std::size_t size)
    {
        instance.restore (before);

        // Memory of its own length.
        const std::vector<char> exact (text, text + size);

        try
        {
            if (instance.restore (exact.data(), exact.size()) == LV2_STATE_SUCCESS)
                return ::testing::AssertionFailure()
                       << "taken: " << std::string (text, std::min<std::size_t> (size, 40));
        }
        catch (...)
        {
            return ::testing::AssertionFailure() << "an exception leaves the bundle";
        }

        return instance.save() == before ? ::testing::AssertionSuccess()
                                         : ::testing::AssertionFailure() << "refused, but something changed";
    }

    ::testing::AssertionResult refuses (const std::string& text) { return refuses (text.c_str(), text.size() + 1); }

    Lv2Module module { CORVANE_LV2_MODULE };
    Lv2Instance instance { module };
    std::string before, session;
};
} // namespace

TEST_F (Lv2Sessions, ComeBackWhole)
{
    EXPECT_EQ (instance.restore (before), LV2_STATE_SUCCESS);
    EXPECT_EQ (instance.save(), before);
    EXPECT_EQ (instance.restore (session), LV2_STATE_SUCCESS);
    EXPECT_EQ (instance.save(), session);
}

TEST_F (Lv2Sessions, WithoutTheZeroAtTheEndComeBackToo)
{
    const std::vector<char> exact (session.begin(), session.end());
    ASSERT_EQ (instance.restore (before), LV2_STATE_SUCCESS);
    EXPECT_EQ (instance.restore (exact.data(), exact.size()), LV2_STATE_SUCCESS);
    EXPECT_EQ (instance.save(), session);
}

TEST_F (Lv2Sessions, OfAnotherSizeThanTheyTellAreRefused)
{
    const auto characters = session.substr (session.find ('.'));

    for (const auto* number : { "-5",
                                "-1",
                                "-2147483648",
                                "-99999999999999999999",
                                "2147483647",
                                "2147483648",
                                "4294967295",
                                "4294967301",
                                "999999999",
                                "1000000000",
                                "99999999999999999999",
                                "18446744073709551615",
                                "0",
                                "1",
                                "1e9",
                                "0x5",
                                "+5",
                                " 5",
                                "5 ",
                                "",
                                "five",
                                "nan" })
    {
        EXPECT_TRUE (refuses (number + characters)) << number;
        EXPECT_TRUE (refuses (number + std::string (".xxxx"))) << number;
        EXPECT_TRUE (refuses (std::string (number) + ".x")) << number;
    }

    const auto size = std::stoi (session);

    for (int wrong = size - 200; wrong < size; ++wrong)
        EXPECT_TRUE (refuses (std::to_string (wrong) + characters)) << wrong;

    for (int wrong = size + 1; wrong < size + 200; ++wrong)
        EXPECT_TRUE (refuses (std::to_string (wrong) + characters)) << wrong;
}

TEST_F (Lv2Sessions, WithoutTheirFormAreRefused)
{
    for (const auto* text :
         { "", ".", "..", "5", "5.", ".xxxxxxx", "x", "5,xxxxxxx", "5.xxxxxx\n", "5.xxx xxx", "5.xxxx==" })
        EXPECT_TRUE (refuses (text)) << text;

    EXPECT_TRUE (refuses ("5.xxxx\0xx", 10));
    EXPECT_TRUE (refuses ("5.xxxx\xff\xfe\xc3", 10));
    EXPECT_TRUE (refuses ("\xf0\x9f", 2));
}

TEST_F (Lv2Sessions, CutAnywhereAreRefused)
{
    for (std::size_t length = 0; length < session.size(); ++length)
    {
        EXPECT_TRUE (refuses (session.substr (0, length))) << length << " signs and a zero";
        EXPECT_TRUE (refuses (session.c_str(), length)) << length << " signs";
    }
}

TEST_F (Lv2Sessions, WithABitFlippedAreRefusedOrComeBackAsASession)
{
    for (std::size_t byte = 0; byte < session.size(); byte += 3)
        for (int bit = 0; bit < 8; ++bit)
        {
            auto damaged = session;
            damaged[byte] = static_cast<char> (damaged[byte] ^ (1 << bit));
            EXPECT_NO_THROW (instance.restore (damaged)) << "byte " << byte << ", bit " << bit;
            EXPECT_EQ (instance.restore (session), LV2_STATE_SUCCESS);
            EXPECT_EQ (instance.save(), session);
        }
}

TEST_F (Lv2Sessions, OfAnotherTypeAreRefused)
{
    instance.restore (before);
    EXPECT_EQ (instance.restore (session.c_str(), session.size() + 1, LV2_ATOM__Chunk), LV2_STATE_ERR_BAD_TYPE);
    EXPECT_EQ (instance.restore (nullptr, 0), LV2_STATE_ERR_NO_PROPERTY);
    EXPECT_EQ (instance.save(), before);
}

TEST_F (Lv2Sessions, LetNoExceptionOut)
{
    const auto retrieve = [] (LV2_State_Handle, uint32_t, size_t*, uint32_t*, uint32_t*) -> const void*
    { throw std::bad_alloc(); };
    const auto store = [] (LV2_State_Handle, uint32_t, const void*, size_t, uint32_t, uint32_t) -> LV2_State_Status
    { throw std::bad_alloc(); };

    EXPECT_NO_THROW (
        EXPECT_NE (instance.state->restore (instance.handle, retrieve, nullptr, 0, nullptr), LV2_STATE_SUCCESS));
    EXPECT_NO_THROW (EXPECT_NE (instance.state->save (instance.handle, store, nullptr, 0, nullptr), LV2_STATE_SUCCESS));
    EXPECT_EQ (instance.save(), session);
}

TEST_F (Lv2Sessions, RunOnAfterwards)
{
    refuses ("-5.xxxx");

    for (auto& channel : instance.in)
        for (std::size_t i = 0; i < channel.size(); ++i)
            channel[i] = (i & 32) != 0 ? 0.25f : -0.25f;

    for (int block = 0; block < 20; ++block)
        instance.run();

    float loudest = 0.0f;

    for (const auto& channel : instance.out)
        for (const auto sample : channel)
        {
            ASSERT_TRUE (std::isfinite (sample));
            loudest = std::max (loudest, std::abs (sample));
        }

    EXPECT_GT (loudest, 0.01f);
}
