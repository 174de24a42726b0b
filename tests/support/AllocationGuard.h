// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** Counts what the current thread takes from and gives back to the heap while the guard lives.

    With the GNU C library every road is seen: malloc, calloc, realloc, the aligned ones and free are defined in
    AllocationGuard.cpp on top of the library's own, and operator new ends there. Under the address and thread
    sanitizers, which bring their own heap, their hooks count instead. Elsewhere operator new and delete are counted
    and `seesMalloc` is false.

    Guards may be nested; each counts from its own start. Threads: each thread counts for itself.
*/
class AllocationGuard
{
public:
    AllocationGuard() noexcept;
    ~AllocationGuard();

    AllocationGuard (const AllocationGuard&) = delete;
    AllocationGuard& operator= (const AllocationGuard&) = delete;

    /** Calls that took memory, and calls that gave some back, since this guard was made. */
    long allocations() const noexcept;
    long releases() const noexcept;

    static const bool seesMalloc;

private:
    const long allocationsBefore, releasesBefore;
};
