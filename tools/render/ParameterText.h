// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/ParameterForm.h"
#include "render/TypedText.h"

#include <string>
#include <vector>

/** The texts of the controls as a person types them.

    A host's text always gives a value, for a host has nobody to ask: an unknown one becomes a default. Here a text that
    does not fit is refused and the refusal says what fits. What does fit gives the value that the host would get from
    it, so every text that a control shows comes back as the value behind it.
*/
namespace ParameterText
{
/** "decibels", "choice" and so on. */
const char* nameOf (ParameterForm::Kind kind) noexcept;

/** The identifiers in order. */
const std::vector<std::string>& identifiers();

/** The place of a name among others. Throws a TextError, which offers the one that comes nearest if one is near. */
int find (const std::string& name, const std::vector<std::string>& names);

/** The normalised value of a text. Numbers go with or without their unit, words in large or small letters, and blanks
    around do not count; a number between two points of a control is moved as the control moves it. Throws a TextError
    that says what the control takes. */
float toNormalised (int index, const std::string& text);
} // namespace ParameterText
