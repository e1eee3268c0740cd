#include "support/guarded_buffer.h"

#include <cstdlib>
#include <cstring>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace zlvtest {

namespace {

constexpr std::size_t kPage = 4096;

std::uint8_t* MapBetweenGuards(std::size_t inside)
{
#ifdef _WIN32
    void* const all = VirtualAlloc(nullptr, inside + 2 * kPage, MEM_RESERVE, PAGE_NOACCESS);
    if (!all) std::abort();
    if (!VirtualAlloc(static_cast<char*>(all) + kPage, inside, MEM_COMMIT, PAGE_READWRITE)) std::abort();
#else
    void* const all = mmap(nullptr, inside + 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (all == MAP_FAILED) std::abort();
    if (mprotect(static_cast<char*>(all) + kPage, inside, PROT_READ | PROT_WRITE) != 0) std::abort();
#endif
    return static_cast<std::uint8_t*>(all);
}

}  // namespace

GuardedBuffer::GuardedBuffer(std::size_t size, Flush flush, std::uint8_t fill) : size_(size)
{
    const std::size_t inside = (size + kPage - 1) / kPage * kPage + (size == 0 ? kPage : 0);
    mappedSize_ = inside + 2 * kPage;
    mapping_ = MapBetweenGuards(inside);
    data_ = mapping_ + kPage + (flush == Flush::ToEnd ? inside - size : 0);
    std::memset(mapping_ + kPage, fill, inside);
}

GuardedBuffer::~GuardedBuffer()
{
#ifdef _WIN32
    VirtualFree(mapping_, 0, MEM_RELEASE);
#else
    munmap(mapping_, mappedSize_);
#endif
}

}  // namespace zlvtest
