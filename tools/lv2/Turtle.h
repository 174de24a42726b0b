// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <utility>
#include <vector>

/** As much of the Turtle syntax as LV2 bundles are written in: prefixes, subjects, statements, nested blank nodes.
    Collections and long strings are not among it. Names and literals stay the text that they were.

    What is printed reads back as the same, so printing twice gives the same bytes.

    Errors   std::runtime_error, with the line, for a text that is none of this.
*/
namespace Turtle
{
struct Node;

struct Statement
{
    std::string verb;
    std::vector<Node> objects;
};

/** A name or a literal as it is written; or, where the text is empty, a blank node with statements of its own. */
struct Node
{
    std::string text;
    std::vector<Statement> statements;
};

struct Subject
{
    std::string name;
    std::vector<Statement> statements;

    /** The statement with this verb, or null; the first if there are several. */
    const Statement* find (const std::string& verb) const;

    /** Gives a verb exactly these objects: in its place if it is there already, otherwise at the end. */
    void set (const std::string& verb, std::vector<Node> objects);
};

struct Document
{
    std::vector<std::pair<std::string, std::string>> prefixes; // name with its colon, and address in brackets
    std::vector<Subject> subjects;

    /** The only subject of this name. Errors: std::runtime_error if there is none, or another. */
    Subject& only (const std::string& name);

    /** Declares a prefix if the document does not know it. Errors: std::runtime_error if it means something else. */
    void needPrefix (const std::string& name, const std::string& address);
};

Document parse (const std::string& text);
std::string print (const Document& document);

/** A text as a string literal. */
std::string quoted (const std::string& text);

/** A number as a decimal literal: the shortest that reads back as the same float. */
std::string decimal (float value);

/** Nodes of plain texts, in order. */
std::vector<Node> nodes (const std::vector<std::string>& texts);
} // namespace Turtle
