// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/** Where the random integers behind the analogue noise floor come from: whole numbers from 0 to 2^31 - 1, one for
    each sample of each channel, drawn channel by channel within a block.

    The processor draws from the system's generator unless it is given another source: measurements hold the noise at
    its middle, tests repeat a stream of their own.

    Threads  next on audio; a source is exchanged when stopped and must outlive its use.
*/
class NoiseSource
{
public:
    virtual ~NoiseSource() = default;

    virtual std::int32_t next() noexcept = 0;

    /** The one source that draws from the system's `rand`. */
    static NoiseSource& system() noexcept;

    /** The one source that always gives the middle of the range, 2^30, which adds exactly nothing. */
    static NoiseSource& held() noexcept;
};
