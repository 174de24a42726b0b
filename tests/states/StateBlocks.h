// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <utility>

/** Session blocks as bytes, and the user's settings file as text: both made here by hand, with nothing of the code
    that they are held against. */
namespace StateBlocks
{
constexpr std::uint32_t magic = 0x21324356;

inline std::string littleEndian (std::uint32_t value)
{
    std::string bytes;

    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char> ((value >> shift) & 0xffu);

    return bytes;
}

/** A block with any header over any bytes. */
inline std::string raw (std::uint32_t itsMagic, std::uint32_t length, const std::string& bytes)
{
    return littleEndian (itsMagic) + littleEndian (length) + bytes;
}

/** A well-formed block around a text. */
inline std::string around (const std::string& text)
{
    return raw (magic, static_cast<std::uint32_t> (text.size()), text + '\0');
}

/** A block with these attributes. */
inline std::string with (std::initializer_list<std::pair<const char*, const char*>> attributes)
{
    std::string text ("<CQ7SETTINGS");

    for (const auto& attribute : attributes)
        text += std::string (" ") + attribute.first + "=\"" + attribute.second + "\"";

    return around (text + "/>");
}

inline void restore (juce::AudioProcessor& processor, const std::string& block)
{
    processor.setStateInformation (block.data(), static_cast<int> (block.size()));
}

inline std::string saved (juce::AudioProcessor& processor)
{
    juce::MemoryBlock block;
    processor.getStateInformation (block);
    return { static_cast<const char*> (block.getData()), block.getSize() };
}

/** The text of a well-formed block. */
inline std::string textOf (const std::string& block)
{
    return block.size() > 9 ? block.substr (8, block.size() - 9) : std::string();
}

/** The settings file of the folder that stands for the user's home. It is gone before and after. */
class StoredOptions
{
public:
    StoredOptions() { std::filesystem::remove_all (folder()); }
    ~StoredOptions() { std::filesystem::remove_all (folder()); }

    StoredOptions (const StoredOptions&) = delete;
    StoredOptions& operator= (const StoredOptions&) = delete;

    static std::filesystem::path folder()
    {
        const std::filesystem::path home (std::getenv ("HOME"));
#ifdef __APPLE__
        return home / "Library" / "Application Support" / "Corvane Plugins";
#else
        return home / "Corvane Plugins";
#endif
    }

    static std::filesystem::path file() { return folder() / "Corvane Q7.settings"; }

    void write (std::initializer_list<std::pair<const char*, const char*>> values) const
    {
        std::string text ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n\n<PROPERTIES>\n");

        for (const auto& value : values)
            text += std::string ("  <VALUE name=\"") + value.first + "\" val=\"" + value.second + "\"/>\n";

        writeText (text + "</PROPERTIES>\n");
    }

    void writeText (const std::string& text) const
    {
        std::filesystem::create_directories (folder());
        std::ofstream (file(), std::ios::binary) << text;
    }

    std::string read() const
    {
        std::ifstream stream (file(), std::ios::binary);
        return { std::istreambuf_iterator<char> (stream), {} };
    }
};
} // namespace StateBlocks
