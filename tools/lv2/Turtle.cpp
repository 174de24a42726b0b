// SPDX-License-Identifier: GPL-3.0-or-later
#include "lv2/Turtle.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

using namespace Turtle;

namespace
{
bool isBlank (char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool isMark (const std::string& token) { return token.size() == 1 && std::string (";,.[]").find (token) != token.npos; }

/** Cuts a text into names, literals and marks. */
class Reader
{
public:
    explicit Reader (const std::string& source) : text (source) { advance(); }

    /** The present token; empty at the end of the text. */
    const std::string& peek() const noexcept { return token; }

    std::string take()
    {
        auto taken = token;
        advance();
        return taken;
    }

    void expect (const std::string& wanted)
    {
        if (token != wanted)
            fail ("\"" + wanted + "\" is missing before \"" + token + "\"");

        advance();
    }

    [[noreturn]] void fail (const std::string& reason) const
    {
        const auto line = 1 + std::count (text.begin(), text.begin() + static_cast<std::ptrdiff_t> (start), '\n');
        throw std::runtime_error ("line " + std::to_string (line) + ": " + reason);
    }

private:
    void advance()
    {
        skipBlanks();
        start = at;

        if (at == text.size())
            token.clear();
        else if (text[at] == '<')
            takeThrough ('>');
        else if (text[at] == '"')
            takeLiteral();
        else if (isMark (text.substr (at, 1)))
            token = text.substr (at++, 1);
        else
            takeWord();
    }

    void skipBlanks()
    {
        while (at < text.size() && (isBlank (text[at]) || text[at] == '#'))
        {
            if (text[at] == '#')
                at = std::min (text.find ('\n', at), text.size());
            else
                ++at;
        }
    }

    void takeThrough (char last)
    {
        const auto end = text.find (last, at + 1);

        if (end == text.npos)
            fail ("a name has no end");

        token = text.substr (at, end + 1 - at);
        at = end + 1;
    }

    /** A string, with the type or language that stands at its end without a blank. */
    void takeLiteral()
    {
        if (text.compare (at, 3, "\"\"\"") == 0)
            fail ("long strings are not read");

        auto end = at + 1;

        while (end < text.size() && text[end] != '"' && text[end] != '\n')
            end += text[end] == '\\' ? 2 : 1;

        if (end >= text.size() || text[end] != '"')
            fail ("a string has no end");

        token = text.substr (at, end + 1 - at);
        at = end + 1;

        if (at < text.size() && (text[at] == '^' || text[at] == '@'))
        {
            const auto literal = token;
            takeWord();
            token = literal + token;
        }
    }

    /** Up to a blank or a mark; a point belongs to a word if the word goes on behind it. */
    void takeWord()
    {
        auto end = at;

        while (end < text.size() && ! isBlank (text[end])
               && std::string (";,[]\"#").find (text[end]) == std::string::npos)
            ++end;

        while (end > at && text[end - 1] == '.')
            --end;

        if (end == at)
            fail ("a name is missing");

        token = text.substr (at, end - at);

        if (token.find_first_of ("()") != token.npos)
            fail ("collections are not read");

        at = end;
    }

    const std::string& text;
    std::size_t at = 0, start = 0;
    std::string token;
};

std::string takeName (Reader& reader)
{
    if (reader.peek().empty() || isMark (reader.peek()))
        reader.fail ("a name or literal is missing");

    return reader.take();
}

std::vector<Statement> readStatements (Reader& reader, const std::string& last);

Node readNode (Reader& reader)
{
    if (reader.peek() != "[")
        return { takeName (reader), {} };

    reader.take();
    return { {}, readStatements (reader, "]") };
}

/** Statements up to the mark that ends them, which is taken too. */
std::vector<Statement> readStatements (Reader& reader, const std::string& last)
{
    std::vector<Statement> statements;

    while (reader.peek() != last)
    {
        Statement statement { takeName (reader), {} };
        statement.objects.push_back (readNode (reader));

        while (reader.peek() == ",")
        {
            reader.take();
            statement.objects.push_back (readNode (reader));
        }

        statements.push_back (std::move (statement));

        if (reader.peek() != last)
            reader.expect (";");
    }

    reader.expect (last);
    return statements;
}

std::string indented (int depth) { return "\n" + std::string (static_cast<std::size_t> (depth), '\t'); }

void printStatements (std::string& out, const std::vector<Statement>& statements, int depth);

void printNode (std::string& out, const Node& node, int depth)
{
    if (! node.text.empty())
    {
        out += node.text;
        return;
    }

    out += '[';
    printStatements (out, node.statements, depth + 1);
    out += indented (depth) + "]";
}

void printStatements (std::string& out, const std::vector<Statement>& statements, int depth)
{
    constexpr std::size_t mostInALine = 4;

    for (std::size_t i = 0; i < statements.size(); ++i)
    {
        const auto& objects = statements[i].objects;
        const auto listed = objects.size() > mostInALine && ! objects[0].text.empty();
        out += (i == 0 ? "" : " ;") + indented (depth) + statements[i].verb;

        for (std::size_t k = 0; k < objects.size(); ++k)
        {
            out += k == 0 ? "" : " ,";
            out += listed ? indented (depth + 1) : " ";
            printNode (out, objects[k], depth);
        }
    }
}
} // namespace

const Statement* Subject::find (const std::string& verb) const
{
    const auto found = std::find_if (statements.begin(), statements.end(),
                                     [&] (const Statement& statement) { return statement.verb == verb; });
    return found == statements.end() ? nullptr : &*found;
}

void Subject::set (const std::string& verb, std::vector<Node> objects)
{
    for (auto& statement : statements)
    {
        if (statement.verb == verb)
        {
            statement.objects = std::move (objects);
            return;
        }
    }

    statements.push_back ({ verb, std::move (objects) });
}

Subject& Document::only (const std::string& name)
{
    const auto isIt = [&] (const Subject& subject) { return subject.name == name; };

    if (std::count_if (subjects.begin(), subjects.end(), isIt) != 1)
        throw std::runtime_error ("there is not exactly one description of " + name);

    return *std::find_if (subjects.begin(), subjects.end(), isIt);
}

void Document::needPrefix (const std::string& name, const std::string& address)
{
    for (const auto& prefix : prefixes)
    {
        if (prefix.first == name)
        {
            if (prefix.second != address)
                throw std::runtime_error ("the prefix " + name + " stands for " + prefix.second + ", not for "
                                          + address);

            return;
        }
    }

    prefixes.emplace_back (name, address);
}

Document Turtle::parse (const std::string& text)
{
    Document document;
    Reader reader (text);

    while (! reader.peek().empty())
    {
        auto name = takeName (reader);

        if (name == "@prefix")
        {
            auto prefix = takeName (reader);
            document.prefixes.emplace_back (std::move (prefix), takeName (reader));
            reader.expect (".");
        }
        else
        {
            document.subjects.push_back ({ std::move (name), readStatements (reader, ".") });
        }
    }

    return document;
}

std::string Turtle::print (const Document& document)
{
    std::string out;

    for (const auto& prefix : document.prefixes)
        out += "@prefix " + prefix.first + " " + prefix.second + " .\n";

    for (const auto& subject : document.subjects)
    {
        out += "\n" + subject.name;
        printStatements (out, subject.statements, 1);
        out += " .\n";
    }

    return out;
}

std::string Turtle::quoted (const std::string& text)
{
    std::string literal = "\"";

    for (const auto c : text)
    {
        if (c == '"' || c == '\\')
            literal += '\\';

        literal += c;
    }

    return literal + "\"";
}

std::string Turtle::decimal (float value)
{
    char digits[128]; // a float has at most 39 places before the point and 45 behind it that count
    const auto end = std::to_chars (std::begin (digits), std::end (digits), value, std::chars_format::fixed).ptr;
    std::string literal (digits, end);
    return literal.find ('.') == literal.npos ? literal + ".0" : literal;
}

std::vector<Node> Turtle::nodes (const std::vector<std::string>& texts)
{
    std::vector<Node> result;

    for (const auto& text : texts)
        result.push_back ({ text, {} });

    return result;
}
