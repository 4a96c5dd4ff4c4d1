#pragma once

#include <cstddef>

namespace vlbase::logging {

inline constexpr std::size_t cacheLineSize = 64;

/// Asks for the cache line at \a place to be written soon; any address may be given. Does not
/// wait, where a store whose line another processor has would make the next atomic exchange wait.
inline void prefetchForWriting(const volatile void* place)
{
#if defined(__x86_64__) || defined(__i386__)
    // The compilers' builtin asks for reading only, unless told that there is this instruction;
    // processors that do not have it pass over it.
    asm volatile("prefetchw %0" : : "m"(*static_cast<const volatile char*>(place)));
#else
    __builtin_prefetch(const_cast<const void*>(place), 1);
#endif
}

} // namespace vlbase::logging
