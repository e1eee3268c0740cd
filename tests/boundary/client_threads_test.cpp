// Many clients at once, each with its own callback, error and pictures.
#include "support/bytes.h"
#include "support/progress_recorder.h"

#include <atomic>
#include <thread>
#include <vector>

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 200;

void BeOneClient(int number, std::atomic<int>& mistakes)
{
    ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    const auto check = [&](bool isGood) { mistakes += !isGood; };
    const std::uint32_t width = 10 + std::uint32_t(number) * 3;
    for (int round = 0; round < kRounds; ++round) {
        Bytes image = RandomBytes(std::size_t(width) * 3 * 5, std::uint64_t(number) * 1000 + round);
        Bytes wanted = image;
        for (std::uint8_t& sample : wanted) sample = std::uint8_t(255 - sample);
        check(ZLV40_InvertImage(image.data(), width, 5, 3, width * 3, 0) == 1);
        check(image == wanted);
        check(ZLV40_GetLastError() == 0);
        if (number % 2) {
            check(ZLV40_InvertImage(image.data(), width, 5, 3, width * 3, ZLV40_PROTECT_ALPHA) == 0);
            check(ZLV40_GetLastError() == ZLV40_ERROR_BAD_ARGUMENT);
            check(image == wanted);
        }
        std::uint64_t data = 0;
        check(ZLV40_GetCallback(&data) == recorder.Function && data == recorder.Data());
        if (round % 16 == 7) {
            ZLV40_ThreadExit();
            check(ZLV40_GetCallback(&data) == nullptr && data == 0);
            ZLV40_SetCallback(recorder.Function, recorder.Data());
        }
    }
}

TEST(ClientThreads, DoNotDisturbEachOther)
{
    std::atomic<int> mistakes = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) threads.emplace_back(BeOneClient, number, std::ref(mistakes));
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(mistakes, 0);
}

TEST(ClientThreads, ShortOnesComeAndGo)
{
    std::atomic<int> mistakes = 0;
    for (int i = 0; i < 500; ++i) {
        std::thread([&] {
            std::uint8_t sample = 3;
            mistakes += ZLV40_InvertImage(&sample, 1, 1, 1, 1, 0) != 1 || sample != 252;
        }).join();
    }
    EXPECT_EQ(mistakes, 0);
}

}  // namespace
}  // namespace zlvtest
