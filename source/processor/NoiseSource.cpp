// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/NoiseSource.h"

#include <cstdlib>

namespace
{
class SystemNoise : public NoiseSource
{
public:
    std::int32_t next() noexcept override
    {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): draws in any order are noise, and the library locks by itself
        const auto drawn = std::rand();

        // Some C libraries draw 15 bits only: they are moved to the top of the 31.
        if constexpr (RAND_MAX == 0x7fff)
            return static_cast<std::int32_t> (static_cast<std::uint32_t> (drawn) << 16);
        else
            return static_cast<std::int32_t> (drawn);
    }
};

class HeldNoise : public NoiseSource
{
public:
    std::int32_t next() noexcept override { return 1 << 30; }
};
} // namespace

NoiseSource& NoiseSource::system() noexcept
{
    static SystemNoise source;
    return source;
}

NoiseSource& NoiseSource::held() noexcept
{
    static HeldNoise source;
    return source;
}
