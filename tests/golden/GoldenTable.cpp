// SPDX-License-Identifier: GPL-3.0-or-later
#include "golden/GoldenTable.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace
{
std::string hex (std::uint64_t value)
{
    std::ostringstream text;
    text << std::hex;
    text.fill ('0');
    text.width (16);
    text << value;
    return text.str();
}

std::filesystem::path samplesOf (const std::filesystem::path& folder, const std::string& name)
{
    return folder / "samples" / (name + ".f32");
}

/** Little-endian float32, as these machines have it. */
std::vector<float> readSamples (const std::filesystem::path& file)
{
    std::ifstream stream (file, std::ios::binary);
    std::stringstream bytes;
    bytes << stream.rdbuf();
    const auto text = bytes.str();

    if (! stream || text.size() % sizeof (float) != 0)
        throw std::runtime_error ("no samples in " + file.string());

    std::vector<float> samples (text.size() / sizeof (float));
    std::memcpy (samples.data(), text.data(), text.size());
    return samples;
}

void writeSamples (const std::filesystem::path& file, const std::vector<float>& samples)
{
    std::filesystem::create_directories (file.parent_path());
    std::ofstream stream (file, std::ios::binary);
    stream.write (reinterpret_cast<const char*> (samples.data()),
                  static_cast<std::streamsize> (samples.size() * sizeof (float)));
}
} // namespace

GoldenTable::GoldenTable (const std::filesystem::path& folder)
{
    std::ifstream stream (folder / "table.json");
    const auto table = nlohmann::json::parse (stream);

    for (const auto& row : table)
    {
        const auto name = row.at ("name").get<std::string>();
        GoldenResult result;
        result.meters = std::stoull (row.at ("meters").get<std::string>(), nullptr, 16);

        if (row.contains ("output"))
            result.output = std::stoull (row.at ("output").get<std::string>(), nullptr, 16);
        else
            result.samples = readSamples (samplesOf (folder, name));

        results[name] = std::move (result);
    }
}

const GoldenResult* GoldenTable::find (const std::string& name) const
{
    const auto at = results.find (name);
    return at != results.end() ? &at->second : nullptr;
}

void GoldenTable::print (const std::vector<GoldenCase>& cases, const std::filesystem::path& folder)
{
    std::filesystem::remove_all (folder / "samples");
    std::ofstream stream (folder / "table.json");
    auto separator = "[\n";

    for (const auto& goldenCase : cases)
    {
        const auto result = goldenCase.run();
        nlohmann::ordered_json row;
        row["name"] = goldenCase.name;

        if (goldenCase.sampled)
            writeSamples (samplesOf (folder, goldenCase.name), result.samples);
        else
            row["output"] = hex (result.output);

        row["meters"] = hex (result.meters);
        row["reason"] = goldenCase.reason;
        stream << separator << row.dump();
        separator = ",\n";
    }

    stream << "\n]\n";
}
