// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <type_traits>

/** The end of the road for exceptions where a host calls in: behind these functions it may be a program in C. */
namespace ExceptionGuard
{
/** What `function` returns, or `otherwise` when it throws. */
template <typename Result, typename Function>
Result call (Result otherwise, Function&& function) noexcept
{
    try
    {
        return function();
    }
    catch (...)
    {
        return otherwise;
    }
}

/** The same for what returns nothing. */
template <typename Function>
void call (Function&& function) noexcept
{
    static_assert (std::is_void_v<decltype (function())>, "say what to return when it throws");

    try
    {
        function();
    }
    catch (...)
    {
    }
}
} // namespace ExceptionGuard
