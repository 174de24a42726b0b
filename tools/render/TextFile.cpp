// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/TextFile.h"

#include "render/RenderError.h"
#include "render/TypedText.h"

#include <fstream>

namespace fs = std::filesystem;

namespace
{
constexpr std::size_t longestText = 64u << 20; // a million changes and more
constexpr auto byteOrderMark = "\xef\xbb\xbf"; // some editors begin a text with it

[[noreturn]] void refuse (const fs::path& file, const std::string& reason)
{
    throw RenderError (ExitStatus::input, "cannot read \"" + file.string() + "\": " + reason);
}

std::ifstream openForReading (const fs::path& file, std::size_t most)
{
    std::error_code error;
    const auto status = fs::status (file, error);

    if (! fs::exists (status))
        refuse (file, "there is no such file");

    if (! fs::is_regular_file (status))
        refuse (file, "it is not a regular file");

    if (fs::file_size (file, error) > most)
        refuse (file, "it is too long to be what it should be");

    std::ifstream stream (file, std::ios::binary);

    if (! stream)
        refuse (file, "it cannot be opened");

    return stream;
}

void refuseBrokenStream (const fs::path& file, const std::ifstream& stream)
{
    if (! stream.eof())
        refuse (file, "it cannot be read to its end");
}
} // namespace

std::string TextFile::read (const fs::path& file, std::size_t most)
{
    auto stream = openForReading (file, most);
    std::string bytes (most + 1, '\0'); // one more than is taken, so that the end is met
    stream.read (bytes.data(), static_cast<std::streamsize> (bytes.size()));
    bytes.resize (static_cast<std::size_t> (stream.gcount()));
    refuseBrokenStream (file, stream);
    return bytes;
}

void TextFile::readLines (const fs::path& file, const std::function<void (const Line&)>& take)
{
    auto stream = openForReading (file, longestText);
    std::string text;

    for (int number = 1; std::getline (stream, text); ++number)
    {
        if (number == 1 && text.rfind (byteOrderMark, 0) == 0)
            text.erase (0, std::char_traits<char>::length (byteOrderMark));

        text = TypedText::trimmed (text.substr (0, text.find ('#')));

        if (text.empty())
            continue;

        try
        {
            take ({ number, text });
        }
        catch (const TextError& error)
        {
            refuse (file, "line " + std::to_string (number) + ": " + error.what());
        }
    }

    refuseBrokenStream (file, stream);
}

void TextFile::write (const PendingFile& file, const std::string& bytes)
{
    std::ofstream stream (file.path(), std::ios::binary);
    stream.write (bytes.data(), static_cast<std::streamsize> (bytes.size()));
    stream.close();

    if (! stream)
        throw RenderError (ExitStatus::output,
                           "cannot write \"" + file.name().string() + "\": not all of it could be written");
}
