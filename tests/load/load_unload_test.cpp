// The shipped library, loaded and unloaded by a host that knows it by name only.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

using InvertFunction = std::uint32_t (*)(std::uint8_t*, std::uint32_t, std::uint32_t, std::int32_t, std::uint32_t,
                                         std::uint32_t);
using GetLastErrorFunction = std::uint32_t (*)();

// One load of the library.
class Library {
public:
#ifdef _WIN32
    Library() : handle_(LoadLibraryA(ZLV_LIBRARY_FILE)) {}
    ~Library() { Unload(); }
    bool Unload()
    {
        const bool isGood = handle_ && FreeLibrary(handle_);
        handle_ = nullptr;
        return isGood;
    }
    template <class Function>
    Function Find(const char* name) const
    {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle_, name)));
    }
    static bool IsLoaded() { return GetModuleHandleA(ZLV_LIBRARY_FILE) != nullptr; }
#else
    Library() : handle_(dlopen("./" ZLV_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL)) {}
    ~Library() { Unload(); }
    bool Unload()
    {
        const bool isGood = handle_ && dlclose(handle_) == 0;
        handle_ = nullptr;
        return isGood;
    }
    template <class Function>
    Function Find(const char* name) const
    {
        return reinterpret_cast<Function>(dlsym(handle_, name));
    }
    static bool IsLoaded()
    {
        void* const there = dlopen("./" ZLV_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD);
        if (there) dlclose(there);
        return there != nullptr;
    }
#endif
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    bool IsOpen() const { return handle_ != nullptr; }

    bool InvertOneSample() const
    {
        const auto invert = Find<InvertFunction>("_ZLV40_InvertImage");
        std::uint8_t sample = 5;
        return invert && invert(&sample, 1, 1, 1, 1, 0) == 1 && sample == 250;
    }

private:
#ifdef _WIN32
    HMODULE handle_;
#else
    void* handle_;
#endif
};

// Bytes of memory that this process holds; 0 where it can't be told.
std::size_t ResidentBytes()
{
#ifdef _WIN32
    return 0;
#else
    std::ifstream file("/proc/self/statm");
    std::size_t total = 0, resident = 0;
    file >> total >> resident;
    return resident * 4096;
#endif
}

TEST(LoadUnload, NamesCarryTheUnderscore)
{
    const Library library;
    ASSERT_TRUE(library.IsOpen()) << ZLV_LIBRARY_FILE;
    EXPECT_NE(library.Find<GetLastErrorFunction>("_ZLV40_GetLastError"), nullptr);
    EXPECT_EQ(library.Find<GetLastErrorFunction>("ZLV40_GetLastError"), nullptr);
    EXPECT_EQ(library.Find<GetLastErrorFunction>("MV40_GetLastError"), nullptr);
}

TEST(LoadUnload, ThreeThousandCycles)
{
    for (int i = 0; i < 3000; ++i) {
        Library library;
        ASSERT_TRUE(library.IsOpen()) << i;
        ASSERT_TRUE(library.InvertOneSample()) << i;
        ASSERT_TRUE(library.Unload()) << i;
        ASSERT_FALSE(Library::IsLoaded()) << i;
    }
}

TEST(LoadUnload, CyclesDoNotGrowTheProcess)
{
    const auto cycle = [](int times) {
        for (int i = 0; i < times; ++i) {
            const Library library;
            ASSERT_TRUE(library.InvertOneSample());
        }
    };
    cycle(200);
    const std::size_t before = ResidentBytes();
    cycle(1000);
    EXPECT_LE(ResidentBytes(), before + (1 << 20));  // a record a cycle would be more
}

TEST(LoadUnload, FiveHundredThreadsEndInsideALoad)
{
    Library library;
    ASSERT_TRUE(library.IsOpen());
    std::atomic<int> good = 0;
    for (int i = 0; i < 500; ++i) std::thread([&] { good += library.InvertOneSample(); }).join();
    EXPECT_EQ(good, 500);
    EXPECT_TRUE(library.Unload());
    EXPECT_FALSE(Library::IsLoaded());
}

TEST(LoadUnload, ThreadsThatUsedTheLibraryMayOutliveIt)
{
    for (int round = 0; round < 20; ++round) {
        Library library;
        ASSERT_TRUE(library.IsOpen());
        std::atomic<int> used = 0;
        std::atomic<bool> mayEnd = false;
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&] {
                used += library.InvertOneSample();
                while (!mayEnd) std::this_thread::yield();
            });
        }
        while (used < 8) std::this_thread::yield();
        EXPECT_TRUE(library.Unload());
        EXPECT_FALSE(Library::IsLoaded());
        mayEnd = true;  // the threads end with no library to tell
        for (std::thread& thread : threads) thread.join();
    }
}

TEST(LoadUnload, AThreadGetsAFreshStartFromTheNextLoad)
{
    {
        const Library library;
        const auto invert = library.Find<InvertFunction>("_ZLV40_InvertImage");
        EXPECT_EQ(invert(nullptr, 1, 1, 1, 1, 0), 0u);
        EXPECT_EQ(library.Find<GetLastErrorFunction>("_ZLV40_GetLastError")(), 5u);
    }
    const Library library;
    EXPECT_EQ(library.Find<GetLastErrorFunction>("_ZLV40_GetLastError")(), 0u);
}

#ifdef _WIN32
TEST(LoadUnload, TheHostsLastWin32ErrorIsUntouched)
{
    SetLastError(1234);
    const Library library;
    const auto invert = library.Find<InvertFunction>("_ZLV40_InvertImage");
    const auto getLastError = library.Find<GetLastErrorFunction>("_ZLV40_GetLastError");
    std::uint8_t sample = 5;
    for (const DWORD error : {0ul, 5ul, 1234ul}) {
        std::thread([&] {
            SetLastError(error);
            EXPECT_EQ(getLastError(), 0u);  // makes the thread's record
            EXPECT_EQ(GetLastError(), error);
            EXPECT_EQ(invert(&sample, 1, 1, 1, 1, 0), 1u);
            EXPECT_EQ(GetLastError(), error);
            EXPECT_EQ(invert(nullptr, 1, 1, 1, 1, 0), 0u);
            EXPECT_EQ(GetLastError(), error);
        }).join();
    }
}
#endif

}  // namespace
