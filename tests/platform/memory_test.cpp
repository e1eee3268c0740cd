#include "platform/platform.h"
#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace zlv::platform {
namespace {

TEST(Memory, IsAlignedTo16BytesAndWritable)
{
    for (const size_t bytes : {size_t(1), size_t(15), size_t(16), size_t(100000)}) {
        void* const block = Allocate(bytes);
        ASSERT_NE(block, nullptr) << bytes;
        EXPECT_EQ(reinterpret_cast<u64>(block) % 16, 0u) << bytes;
        std::memset(block, 0xAB, bytes);
        Free(block);
    }
}

TEST(Memory, ZeroBytesAreABlockToo)
{
    void* const block = Allocate(0);
    EXPECT_NE(block, nullptr);
    Free(block);
}

TEST(Memory, NullIsNothingToFree)
{
    Free(nullptr);
    FreeClientBlock(nullptr);
    SUCCEED();
}

TEST(ClientBlock, IsZeroFilled)
{
    for (const size_t bytes : {size_t(1), size_t(4096), size_t(1 << 20)}) {
        // A used and freed block of this size is what a careless allocator would hand out again.
        u8* const used = static_cast<u8*>(AllocateClientBlock(bytes));
        ASSERT_NE(used, nullptr);
        std::memset(used, 0xFF, bytes);
        FreeClientBlock(used);
        u8* const block = static_cast<u8*>(AllocateClientBlock(bytes));
        ASSERT_NE(block, nullptr);
        EXPECT_TRUE(std::all_of(block, block + bytes, [](u8 byte) { return byte == 0; })) << bytes;
        FreeClientBlock(block);
    }
}

// The sanitizers watch wild reads themselves; the kernel does the copying, so nothing is reported.
TEST(ReadForeignMemory, CopiesWhatCanBeRead)
{
    const char source[] = "ZLV grid";
    char copy[sizeof source] = {};
    EXPECT_TRUE(ReadForeignMemory(source, copy, sizeof source));
    EXPECT_STREQ(copy, source);
}

TEST(ReadForeignMemory, RefusesWhatCannot)
{
    char copy[128];
    const u8* gone = nullptr;
    {
        zlvtest::GuardedBuffer buffer(64, zlvtest::Flush::ToEnd);
        gone = buffer.Data();
        EXPECT_TRUE(ReadForeignMemory(gone, copy, 64));
        EXPECT_FALSE(ReadForeignMemory(gone + 64, copy, 8)) << "the guard page behind it";
        EXPECT_FALSE(ReadForeignMemory(gone + 32, copy, 64)) << "half in, half out";
    }
    EXPECT_FALSE(ReadForeignMemory(gone, copy, 64)) << "memory that was given back";
    EXPECT_FALSE(ReadForeignMemory(nullptr, copy, 8));
    EXPECT_FALSE(ReadForeignMemory(reinterpret_cast<const void*>(~u64{0} - 15), copy, 8)) << "the top of the range";
}

}  // namespace
}  // namespace zlv::platform
