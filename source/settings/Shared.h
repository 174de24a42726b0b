// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

/** A value that any thread may read and write at any time: whole, never torn, in no order to other values.

    It behaves as the value itself, so that a record of such fields is written and copied like a plain one. What must
    change together goes through a LatestValue instead.

    Threads  any; no lock on the machines that audio runs on.
*/
template <typename Value>
class Shared
{
public:
    Shared() noexcept = default;
    Shared (Value initial) noexcept : value (initial) {} // on purpose not explicit
    Shared (const Shared& other) noexcept : value (other.load()) {}
    ~Shared() = default;

    Shared& operator= (const Shared& other) noexcept { return *this = other.load(); }

    Shared& operator= (Value newValue) noexcept
    {
        value.store (newValue, std::memory_order_relaxed);
        return *this;
    }

    operator Value() const noexcept { return load(); }
    Value operator->() const noexcept { return load(); } // of a pointer
    Value load() const noexcept { return value.load (std::memory_order_relaxed); }

    /** In one order with all others of this kind, where two values depend on each other. */
    void storeInOrder (Value newValue) noexcept { value.store (newValue); }
    Value loadInOrder() const noexcept { return value.load(); }

private:
    static_assert (std::atomic<Value>::is_always_lock_free);

    std::atomic<Value> value { Value() };
};
