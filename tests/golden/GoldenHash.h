// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

/** FNV-1a over the bits of numbers. All NaNs count as one: which of two goes on is the compiler's choice. The sign of
    a zero counts. */
class GoldenHash
{
public:
    void add (float value) noexcept
    {
        std::uint32_t bits = 0x7fc00000u;

        if (! std::isnan (value))
            std::memcpy (&bits, &value, sizeof bits);

        addBytes (bits, 4);
    }

    void add (double value) noexcept
    {
        std::uint64_t bits = 0x7ff8000000000000u;

        if (! std::isnan (value))
            std::memcpy (&bits, &value, sizeof bits);

        addBytes (bits, 8);
    }

    void add (int value) noexcept { addBytes (static_cast<std::uint32_t> (value), 4); }

    std::uint64_t value() const noexcept { return hash; }

private:
    void addBytes (std::uint64_t bits, int count) noexcept
    {
        for (int i = 0; i < count; ++i)
            hash = (hash ^ ((bits >> (8 * i)) & 0xffu)) * 0x100000001b3u;
    }

    std::uint64_t hash = 0xcbf29ce484222325u;
};
