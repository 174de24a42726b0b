// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AllocationGuard.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define CORVANE_SANITIZERS_OWN_THE_HEAP 1
#endif
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define CORVANE_SANITIZERS_OWN_THE_HEAP 1
#endif

namespace
{
// Plain data without a constructor: a thread's first use of it takes no memory itself.
thread_local int armed = 0;
thread_local long allocationCount = 0;
thread_local long releaseCount = 0;

inline void noteAllocation() noexcept
{
    if (armed > 0)
        ++allocationCount;
}

inline void noteRelease (const void* memory) noexcept
{
    if (armed > 0 && memory != nullptr)
        ++releaseCount;
}
} // namespace

// ---- sanitizers: their heap, their hooks -----------------------------------------------------
#if CORVANE_SANITIZERS_OWN_THE_HEAP

// Declared here: not every compiler installs the header of this interface.
extern "C" int __sanitizer_install_malloc_and_free_hooks (void (*onMalloc) (const volatile void*, std::size_t),
                                                          void (*onFree) (const volatile void*));

namespace
{
void mallocHook (const volatile void*, std::size_t) { noteAllocation(); }
void freeHook (const volatile void* memory) { noteRelease (const_cast<const void*> (memory)); }

const int hooksInstalled = __sanitizer_install_malloc_and_free_hooks (mallocHook, freeHook);
} // namespace

const bool AllocationGuard::seesMalloc = hooksInstalled > 0;

// ---- GNU C library: its own functions stand behind ours under other names --------------------
#elif defined(__GLIBC__)

extern "C"
{
    void* __libc_malloc (std::size_t) noexcept;
    void* __libc_calloc (std::size_t, std::size_t) noexcept;
    void* __libc_realloc (void*, std::size_t) noexcept;
    void* __libc_memalign (std::size_t, std::size_t) noexcept;
    void __libc_free (void*) noexcept;

// Visible, so that the C++ and the system libraries call these too.
#define CORVANE_VISIBLE __attribute__ ((visibility ("default")))

    CORVANE_VISIBLE void* malloc (std::size_t size) noexcept
    {
        noteAllocation();
        return __libc_malloc (size);
    }

    CORVANE_VISIBLE void* calloc (std::size_t count, std::size_t size) noexcept
    {
        noteAllocation();
        return __libc_calloc (count, size);
    }

    CORVANE_VISIBLE void* realloc (void* memory, std::size_t size) noexcept
    {
        noteRelease (memory);
        noteAllocation();
        return __libc_realloc (memory, size);
    }

    CORVANE_VISIBLE void* memalign (std::size_t alignment, std::size_t size) noexcept
    {
        noteAllocation();
        return __libc_memalign (alignment, size);
    }

    CORVANE_VISIBLE void* aligned_alloc (std::size_t alignment, std::size_t size) noexcept
    {
        noteAllocation();
        return __libc_memalign (alignment, size);
    }

    CORVANE_VISIBLE int posix_memalign (void** result, std::size_t alignment, std::size_t size) noexcept
    {
        if (alignment % sizeof (void*) != 0 || alignment == 0 || (alignment & (alignment - 1)) != 0)
            return EINVAL;

        noteAllocation();
        auto* memory = __libc_memalign (alignment, size);

        if (memory == nullptr)
            return ENOMEM;

        *result = memory;
        return 0;
    }

    CORVANE_VISIBLE void free (void* memory) noexcept
    {
        noteRelease (memory);
        __libc_free (memory);
    }

#undef CORVANE_VISIBLE
}

const bool AllocationGuard::seesMalloc = true;

// ---- elsewhere: the C++ operators alone ------------------------------------------------------
#else

void* operator new (std::size_t size)
{
    noteAllocation();

    if (auto* memory = std::malloc (size > 0 ? size : 1))
        return memory;

    throw std::bad_alloc();
}

void operator delete (void* memory) noexcept
{
    noteRelease (memory);
    std::free (memory);
}

void operator delete (void* memory, std::size_t) noexcept { operator delete (memory); }
void* operator new[] (std::size_t size) { return operator new (size); }
void operator delete[] (void* memory) noexcept { operator delete (memory); }
void operator delete[] (void* memory, std::size_t) noexcept { operator delete (memory); }

const bool AllocationGuard::seesMalloc = false;

#endif

// ---- the guard -------------------------------------------------------------------------------
AllocationGuard::AllocationGuard() noexcept : allocationsBefore (allocationCount), releasesBefore (releaseCount)
{
    ++armed;
}

AllocationGuard::~AllocationGuard() { --armed; }

long AllocationGuard::allocations() const noexcept { return allocationCount - allocationsBefore; }
long AllocationGuard::releases() const noexcept { return releaseCount - releasesBefore; }
