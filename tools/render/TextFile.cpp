// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/TextFile.h"

#include "render/RenderError.h"
#include "render/TypedText.h"

#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace
{
constexpr std::size_t longestText = 64u << 20; // a million changes and more
constexpr auto byteOrderMark = "\xef\xbb\xbf"; // some editors begin a text with it

[[noreturn]] void refuse (const fs::path& file, const std::string& reason)
{
    throw RenderError (ExitStatus::input, "cannot read \"" + file.string() + "\": " + reason);
}
} // namespace

std::string TextFile::read (const fs::path& file, std::size_t most)
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
    std::ostringstream bytes;

    if (stream && stream.peek() != std::ifstream::traits_type::eof())
        bytes << stream.rdbuf();

    if (! bytes || (! stream && ! stream.eof()))
        refuse (file, "it cannot be read to its end");

    return bytes.str();
}

std::vector<TextFile::Line> TextFile::readLines (const fs::path& file)
{
    auto all = read (file, longestText);

    if (all.rfind (byteOrderMark, 0) == 0)
        all.erase (0, std::char_traits<char>::length (byteOrderMark));

    std::vector<Line> lines;
    std::istringstream stream (all);
    std::string text;

    for (int number = 1; std::getline (stream, text); ++number)
    {
        text = TypedText::trimmed (text.substr (0, text.find ('#')));

        if (! text.empty())
            lines.push_back ({ number, text });
    }

    return lines;
}

void TextFile::refuseLine (const fs::path& file, int number, const std::string& reason)
{
    refuse (file, "line " + std::to_string (number) + ": " + reason);
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
