// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/TableDump.h"

#include "dsp/ControlLaw.h"
#include "dsp/DetectorCurves.h"
#include "dsp/OversamplerChannel.h"
#include "render/TextFile.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace
{
std::string toLittleEndian (const std::vector<float>& values)
{
    std::string bytes;
    bytes.reserve (values.size() * sizeof (float));

    for (const auto value : values)
    {
        std::uint32_t bits;
        std::memcpy (&bits, &value, sizeof (bits));

        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back (static_cast<char> (bits >> shift & 0xffu));
    }

    return bytes;
}

void writeFloats (const std::vector<float>& values, const std::filesystem::path& file, bool overwrite)
{
    PendingFile pending (file, overwrite);
    TextFile::write (pending, toLittleEndian (values));
    pending.commit();
}
} // namespace

void TableDump::writeCurves (const std::filesystem::path& file, bool overwrite)
{
    std::vector<float> values;

    for (int row = 0; row < DetectorCurves::numCurves; ++row)
    {
        const auto* entries = DetectorCurves::forRatio (row).entries;
        values.insert (values.end(), entries, entries + DetectorCurve::numEntries);
    }

    writeFloats (values, file, overwrite);
}

void TableDump::writeControlLaw (const std::filesystem::path& file, bool overwrite)
{
    const auto& entries = ControlLaw::shared().entries;
    writeFloats ({ entries.begin(), entries.end() }, file, overwrite);
}

void TableDump::writeTaps (int factor, const std::filesystem::path& file, bool overwrite)
{
    writeFloats (OversamplerChannel::designTaps (factor), file, overwrite);
}
