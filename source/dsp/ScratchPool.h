// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/** Aligned float vectors of one length, owned by one engine object.

    Shape    numVectors() vectors of length() samples, each aligned to 64 bytes.
    Threads  grow and release when stopped; reading a vector's address on audio.
*/
class ScratchPool
{
public:
    /** Makes room for at least this many vectors of at least this length. A pool that is larger is kept. */
    void grow (int vectors, int samples)
    {
        if (vectors <= count && samples <= size)
            return;

        constexpr std::size_t perLine = alignmentBytes / sizeof (float);
        count = vectors > count ? vectors : count;
        size = samples > size ? samples : size;
        stride = (static_cast<std::size_t> (size) + perLine - 1) / perLine * perLine;
        storage.assign (static_cast<std::size_t> (count) * stride + perLine, 0.0f);

        const auto misplaced = reinterpret_cast<std::uintptr_t> (storage.data()) % alignmentBytes;
        first = storage.data() + (misplaced == 0 ? 0 : (alignmentBytes - misplaced) / sizeof (float));
    }

    /** Gives the memory back; the pool then holds nothing. */
    void release()
    {
        std::vector<float>().swap (storage);
        first = nullptr;
        count = size = 0;
        stride = 0;
    }

    float* operator[] (int index) noexcept { return first + static_cast<std::size_t> (index) * stride; }
    int numVectors() const noexcept { return count; }
    int length() const noexcept { return size; }

private:
    static constexpr std::size_t alignmentBytes = 64;

    std::vector<float> storage;
    float* first = nullptr;
    std::size_t stride = 0; // samples from one vector to the next
    int count = 0, size = 0;
};
