#include "fuzz/input.h"

#include "zlv40.h"

#include <cstdio>
#include <cstdlib>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZLV_HEAP_IS_WATCHED
#endif
#endif
#ifndef ZLV_HEAP_IS_WATCHED
#include "support/guarded_buffer.h"
#endif

namespace zlvtest {

// The address sanitizer watches both ends on the heap; elsewhere the end touches a page that faults.
struct Buffer::Memory {
    Host& host;
    std::size_t size;
#ifdef ZLV_HEAP_IS_WATCHED
    std::unique_ptr<std::uint8_t[]> bytes = std::make_unique<std::uint8_t[]>(size);
    std::uint8_t* Data() { return bytes.get(); }
#else
    GuardedBuffer bytes{size, Flush::ToEnd};
    std::uint8_t* Data() { return bytes.Data(); }
#endif

    Memory(Host& newHost, std::size_t newSize) : host(newHost), size(newSize) {}
    ~Memory() { host.Note(Data(), size); }
};

Buffer::Buffer(std::size_t size, Input& input)
    : memory_(std::make_unique<Memory>(input.GetHost(), size)), data_(memory_->Data())
{
    std::memset(data_, input.Fill(), size);
    for (std::size_t k = 0; k < size && input.Rest() > 1; ++k) data_[k] = input.Byte();
}

Buffer::Buffer() = default;
Buffer::Buffer(Buffer&&) noexcept = default;
Buffer& Buffer::operator=(Buffer&&) noexcept = default;
Buffer::~Buffer() = default;

void Require(bool holds)
{
    if (!holds) std::abort();
}

void RequireResult(Input& input, const char* function, std::uint32_t result, std::uint32_t error)
{
    NoteResult(input, result, error);
    if (result <= 1 && (result == 1) == (error == 0)) return;
    std::fprintf(stderr, "%s returned %u with error %u\n", function, result, error);
    std::abort();
}

void NoteResult(Input& input, std::uint32_t result, std::uint32_t error)
{
    const std::uint8_t answer[] = {std::uint8_t(result), std::uint8_t(error)};
    input.GetHost().Note(answer, sizeof answer);
    if (error == ZLV40_ERROR_OUT_OF_MEMORY || error == ZLV40_ERROR_TIME_OUT) input.GetHost().MayDiffer();
}

}  // namespace zlvtest
