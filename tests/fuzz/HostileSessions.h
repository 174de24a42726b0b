// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

/** Sessions that no host has saved, made from sessions that one could have. The same seed and number give the same session
    everywhere: the generator is one whose results the standard fixes, and so are the choices made of them. */
class HostileSessions
{
public:
    /** seeds: blocks of the plug-in's own, valid and not. section: what the VST3 wrapper writes behind one. */
    HostileSessions (std::vector<std::string> seedsToUse, std::string sectionToUse, std::uint32_t seedOfAll)
        : seeds (std::move (seedsToUse)), section (std::move (sectionToUse)), seed (seedOfAll)
    {
    }

    /** As a VST3 host hands it over. */
    std::string forVst3 (std::uint32_t number)
    {
        auto session = damagedBlock (number);

        if (below (8) != 0)
            session += section;

        if (below (16) == 0)
            session += section; // of a wrapper in a wrapper

        if (below (4) == 0)
            damageFrame (session);

        if (below (4) == 0)
            damage (session);

        return session;
    }

    /** As an LV2 host hands it over. */
    std::string forLv2 (std::uint32_t number)
    {
        const auto block = damagedBlock (number);
        auto text = juce::MemoryBlock (block.data(), block.size()).toBase64Encoding().toStdString();

        if (below (8) == 0)
            text = interestingNumber() + text.substr (text.find ('.'));

        // Most stay well-formed text, so that the damage arrives where the block is read.
        if (below (4) == 0)
            damage (text);

        return text;
    }

private:
    std::string damagedBlock (std::uint32_t number)
    {
        random.seed (seed + number);
        auto block = pick (seeds);

        for (auto damages = below (5); damages > 0; --damages)
            damage (block);

        // With a header that fits again the text is read to its end.
        if (block.size() > 8 && below (2) == 0)
        {
            const auto length = static_cast<std::uint32_t> (block.size() - 8);

            for (int i = 0; i < 4; ++i)
                block[4 + static_cast<std::size_t> (i)] = static_cast<char> ((length >> (8 * i)) & 0xff);
        }

        return block;
    }

    std::uint32_t below (std::size_t limit) { return static_cast<std::uint32_t> (random() % limit); }

    const std::string& pick (const std::vector<std::string>& from) { return from[below (from.size())]; }

    std::string interestingNumber()
    {
        static const std::vector<std::string> numbers { "0",
                                                        "-0",
                                                        "1",
                                                        "-1",
                                                        "-5",
                                                        "127",
                                                        "128",
                                                        "255",
                                                        "256",
                                                        "65535",
                                                        "65536",
                                                        "2147483647",
                                                        "2147483648",
                                                        "-2147483648",
                                                        "4294967295",
                                                        "4294967296",
                                                        "9223372036854775807",
                                                        "-9223372036854775808",
                                                        "18446744073709551615",
                                                        "1e30",
                                                        "-1e30",
                                                        "1e400",
                                                        "nan",
                                                        "-inf",
                                                        "inf",
                                                        "1e-400",
                                                        "0x10",
                                                        "1.5",
                                                        "  7",
                                                        "",
                                                        ".",
                                                        "-",
                                                        std::string (400, '9') };
        return pick (numbers);
    }

    /** The eight bytes of size ahead of the tag, or the tag. */
    void damageFrame (std::string& session)
    {
        constexpr std::size_t tagLength = 15, sizeLength = 8;

        if (session.size() < tagLength + sizeLength)
            return;

        const auto sizeAt = session.size() - tagLength - sizeLength;

        if (below (2) == 0)
        {
            flipBit (session, sizeAt, sizeLength + tagLength);
            return;
        }

        const std::uint64_t sizes[] = { 0,
                                        1,
                                        session.size(),
                                        session.size() - tagLength,
                                        session.size() - tagLength - sizeLength,
                                        session.size() - tagLength - 2 * sizeLength,
                                        below (session.size()),
                                        0x7fffffff,
                                        0xffffffff,
                                        ~std::uint64_t { 0 },
                                        ~std::uint64_t { 0 } - below (2000),
                                        std::uint64_t { 1 } << below (64) };
        auto size = sizes[below (std::size (sizes))];

        for (std::size_t i = 0; i < sizeLength; ++i, size >>= 8)
            session[sizeAt + i] = static_cast<char> (size & 0xff);
    }

    void flipBit (std::string& bytes, std::size_t from, std::size_t length)
    {
        auto& byte = bytes[from + below (length)];
        byte = static_cast<char> (byte ^ (1 << below (8)));
    }

    void damage (std::string& bytes)
    {
        if (bytes.empty())
        {
            bytes = pick (seeds);
            return;
        }

        const auto at = below (bytes.size());
        const auto length = 1 + below (std::min<std::size_t> (bytes.size() - at, std::size_t { 1 } << below (11)));

        switch (below (10))
        {
            case 0: flipBit (bytes, 0, bytes.size()); break;
            case 1: flipBit (bytes, 0, std::min<std::size_t> (bytes.size(), 12)); break; // of the header
            case 2: bytes[at] = static_cast<char> (below (256)); break;
            case 3: bytes.resize (at); break;
            case 4: bytes.erase (at, length); break;
            case 5: bytes.insert (below (bytes.size()), bytes.substr (at, length)); break;
            case 6: replaceNumber (bytes); break;
            case 7: bytes.insert (at, repeated()); break;
            case 8: splice (bytes, at); break;
            default:
                for (auto i = at; i < at + length; ++i)
                    bytes[i] = static_cast<char> (below (256));
        }
    }

    void replaceNumber (std::string& bytes)
    {
        const auto quote = bytes.find ("=\"", below (bytes.size()));

        if (quote == std::string::npos)
            return;

        const auto end = bytes.find ('"', quote + 2);

        if (end != std::string::npos)
            bytes.replace (quote + 2, end - quote - 2, interestingNumber());
    }

    std::string repeated()
    {
        static const std::vector<std::string> pieces { "<a>",
                                                       "<CQ7SETTINGS>",
                                                       " a=\"1\"",
                                                       "&#x41;",
                                                       "&lt;",
                                                       "<!--",
                                                       "<![CDATA[",
                                                       "\xff",
                                                       "\xf0\x9f\x98",
                                                       "JUCEPrivateData",
                                                       "0",
                                                       " ",
                                                       std::string (1, '\0') };
        const auto& piece = pick (pieces);
        std::string all;

        for (auto times = 1u << below (13); times > 0; --times)
            all += piece;

        return all;
    }

    void splice (std::string& bytes, std::size_t at)
    {
        const auto& other = pick (seeds);

        if (! other.empty())
            bytes = bytes.substr (0, at) + other.substr (below (other.size()));
    }

    std::vector<std::string> seeds;
    std::string section;
    std::uint32_t seed;
    std::mt19937 random;
};
