// What tests of the tone effects share: a client that listens, and the questions that every effect in place answers.
#pragma once

#include "runtime/base_call.h"
#include "support/base_watch.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include <cstring>
#include <functional>

#include "zlv40.h"

namespace zlvtest {

using zlv::u32;
using zlv::u8;

// While it lives, reports of exports on this thread go to the recorder, which may cancel.
class Client {
public:
    explicit Client(std::size_t cancelAt = 0)
    {
        recorder.cancelAt = cancelAt;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
    }
    ~Client() { ZLV40_SetCallback(nullptr, 0); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    ProgressRecorder recorder;
};

struct ImageShape {
    u32 width, height, channels, padding = 0;

    u32 Stride() const { return width * channels + padding; }
    // The last row has no padding behind it.
    std::size_t Bytes() const { return height ? std::size_t(height - 1) * Stride() + width * channels : 0; }
};

// An effect that changes an image in place, and the same said plainly.
struct InPlaceEffect {
    std::function<u32(u8*, const ImageShape&)> apply;
    std::function<void(u8*, const ImageShape&)> plain;
};

// On awkward sizes, with and without padding, with and without a client that listens, on every target.
inline void ExpectPlain(const InPlaceEffect& effect, u32 channels)
{
    OnEveryTarget([&] {
        for (const u32 width : {1u, 2u, 3u, 7u, 15u, 16u, 17u, 18u, 33u, 64u, 65u, 70u, 131u}) {
            for (const u32 padding : {0u, 5u}) {
                for (const bool hasClient : {false, true}) {
                    const ImageShape shape = {width, 3, channels, padding};
                    SCOPE(width, channels, padding, hasClient);
                    Bytes wanted = RandomBytes(shape.Bytes(), width * 10 + channels);
                    GuardedBuffer image(shape.Bytes(), Flush::ToEnd);
                    std::memcpy(image.Data(), wanted.data(), wanted.size());
                    effect.plain(wanted.data(), shape);
                    {
                        const Client client;
                        if (!hasClient) ZLV40_SetCallback(nullptr, 0);
                        EXPECT_EQ(effect.apply(image.Data(), shape), 1u);
                    }
                    EXPECT_EQ(ZLV40_GetLastError(), 0u);
                    EXPECT_EQ(Difference(wanted.data(), image.Data(), wanted.size()), "");
                }
            }
        }
    });
}

// Reports (row, height) after each row; a cancel at any of them keeps the rows done and leaves this code.
inline void ExpectRowsReported(const InPlaceEffect& effect, u32 channels, u32 codeOfCancel)
{
    const ImageShape shape = {9, 4, channels, 2};
    for (std::size_t cancelAt = 0; cancelAt <= shape.height; ++cancelAt) {
        SCOPE("cancelled at", cancelAt);
        Bytes wanted = RandomBytes(shape.Bytes(), 3);
        Bytes image = wanted;
        ImageShape done = shape;
        if (cancelAt) done.height = u32(cancelAt);
        effect.plain(wanted.data(), done);
        const Client client(cancelAt);
        EXPECT_EQ(effect.apply(image.data(), shape), cancelAt ? 0u : 1u);
        EXPECT_EQ(ZLV40_GetLastError(), cancelAt ? codeOfCancel : 0u);
        EXPECT_EQ(client.recorder.reports, Rows(done.height, shape.height));
        EXPECT_EQ(Difference(wanted.data(), image.data(), wanted.size()), "");
    }
}

// A step of another effect reports nothing and cannot be cancelled.
inline void ExpectSilentAsStep(const InPlaceEffect& effect, u32 channels)
{
    const ImageShape shape = {9, 4, channels};
    Bytes wanted = RandomBytes(shape.Bytes(), 4);
    Bytes image = wanted;
    effect.plain(wanted.data(), shape);
    const Client client(1);
    ++zlv::exportedContexts.Get()->nestCount;
    EXPECT_EQ(effect.apply(image.data(), shape), 1u);
    --zlv::exportedContexts.Get()->nestCount;
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_TRUE(client.recorder.reports.empty());
    EXPECT_EQ(image, wanted);
}

// An effect of a full frame: both counters are at 1 inside it, and they and the base layer's callback are what they
// were after a success, a cancel and a refusal.
inline void ExpectFrame(const InPlaceEffect& effect, u32 channels, bool reports)
{
    BaseWatch base;
    const zlv::ZLVThreadContext& context = *zlv::exportedContexts.Get();
    for (const std::size_t cancelAt : {std::size_t(0), std::size_t(2)}) {
        for (const bool hasBuffer : {true, false}) {
            SCOPE("cancelled at", cancelAt, "buffer", hasBuffer);
            const ImageShape shape = {3, 3, channels};
            Bytes image = RandomBytes(shape.Bytes(), 5);
            Client client(cancelAt);
            client.recorder.atReport = [&] {
                EXPECT_EQ(context.nestCount, 1u);
                EXPECT_EQ(context.callDepth, 1u);
            };
            const bool isCancelled = reports && cancelAt && hasBuffer;
            EXPECT_EQ(effect.apply(hasBuffer ? image.data() : nullptr, shape), hasBuffer && !isCancelled ? 1u : 0u);
            base.ExpectUntouched();
        }
    }
}

// An image without pixels still has rows to report; with a height of 0 there is nothing to do.
inline void ExpectEmptyImagesSucceed(const InPlaceEffect& effect, u32 channels)
{
    u8 untouched = 77;
    const Client client;
    EXPECT_EQ(effect.apply(&untouched, {0, 3, channels}), 1u);
    EXPECT_EQ(client.recorder.reports, Rows(3, 3));
    EXPECT_EQ(effect.apply(&untouched, {3, 0, channels}), 1u);
    EXPECT_EQ(client.recorder.reports.size(), 3u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(effect.apply(&untouched, {0, 0xFFFFFFFF, channels}), 1u) << "and nobody waits for billions of rows";
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(untouched, 77);
}

// The effect refuses with the code, writes nothing, reports nothing.
inline void ExpectRefused(const InPlaceEffect& effect, bool hasBuffer, const ImageShape& shape,
                          u32 code = ZLV40_ERROR_BAD_ARGUMENT)
{
    const Bytes before = RandomBytes(200, 6);
    Bytes image = before;
    const Client client;
    EXPECT_EQ(effect.apply(hasBuffer ? image.data() : nullptr, shape), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), code);
    EXPECT_TRUE(client.recorder.reports.empty());
    EXPECT_EQ(image, before);
}

}  // namespace zlvtest
