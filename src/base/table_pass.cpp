#include "base/table_pass.h"

#include "base/sample.h"
#include "base/table_pass.kernels.h"

#include <algorithm>
#include <type_traits>

namespace zlv {

namespace {

constexpr u32 kMaxMaskPeriod = 8;

// Looking a table through costs as much as looking some thousand samples up.
constexpr size_t kSamplesWorthSteps = 4096;

// Nothing but exclusive ors, a table of few steps, one table for all channels or a table each: each has its own kernel.
class BytePlan {
public:
    BytePlan(const void* const* tables, u32 channels, size_t samples)
        : kernels_(Kernels<TablePassKernels>()), tables_(tables), channels_(channels)
    {
        const bool isShared = std::all_of(tables, tables + channels, [&](const void* t) { return t == tables[0]; });
        period_ = isShared ? 1 : channels;
        if (period_ <= kMaxMaskPeriod && MakeXorMasks()) way_ = Way::Xor;
        else if (period_ <= kMaxMaskPeriod && samples >= kSamplesWorthSteps && MakeSteps()) way_ = Way::Steps;
        else way_ = isShared ? Way::SharedTable : Way::TableEach;
    }

    void Map(u8* samples, size_t pixels) const
    {
        switch (way_) {
        case Way::Xor: kernels_.xorSamples(samples, pixels * channels_, masks_, period_); break;
        case Way::Steps: kernels_.mapSteps(samples, pixels * channels_, steps_, masks_, period_); break;
        case Way::SharedTable: kernels_.mapSamples(samples, pixels * channels_, Table(0)); break;
        case Way::TableEach: kernels_.mapPixels(samples, pixels, channels_, tables_); break;
        }
    }

private:
    enum class Way : u8 { Xor, Steps, SharedTable, TableEach };

    const u8* Table(u32 channel) const { return static_cast<const u8*>(tables_[channel]); }

    // False when some table is more than an exclusive or.
    bool MakeXorMasks()
    {
        for (u32 c = 0; c < period_; ++c) {
            const bool isKnown = c > 0 && Table(c) == Table(c - 1);
            if (!isKnown && Table(c) && !kernels_.isXorTable(Table(c))) return false;
            masks_[c] = Table(c) ? Table(c)[0] : u8(0);
        }
        RepeatMasks();
        return true;
    }

    // False when several tables are in use, or one of more steps.
    bool MakeSteps()
    {
        const u8* only = nullptr;
        for (u32 c = 0; c < period_; ++c) {
            if (Table(c) && only && Table(c) != only) return false;
            if (Table(c)) only = Table(c);
            masks_[c] = Table(c) ? 255 : 0;
        }
        RepeatMasks();
        return FindSteps(only, steps_);
    }

    // The pixel's masks again and again: whole pixels, doubled each time.
    void RepeatMasks()
    {
        const size_t size = period_ * kMaskBlock;
        for (size_t done = period_; done < size; done *= 2) {
            std::copy_n(masks_, std::min(done, size - done), masks_ + done);
        }
    }

    const TablePassKernels& kernels_;
    const void* const* tables_;
    const u32 channels_;
    Way way_;
    u32 period_;
    SteppedTable steps_;
    u8 masks_[kMaxMaskPeriod * kMaskBlock];
};

// 16-bit tables are larger than most rows: they are looked up and never inspected.
class WordPlan {
public:
    WordPlan(const void* const* tables, u32 channels, size_t) : tables_(tables), channels_(channels) {}

    void Map(u16* samples, size_t pixels) const
    {
        for (u32 c = 0; c < channels_; ++c) {
            const u16* const table = static_cast<const u16*>(tables_[c]);
            if (!table) continue;
            u16* sample = samples + c;
            for (size_t x = 0; x < pixels; ++x, sample += channels_) *sample = table[*sample];
        }
    }

private:
    const void* const* tables_;
    const u32 channels_;
};

template <class T>
using PlanFor = std::conditional_t<sizeof(T) == 1, BytePlan, WordPlan>;

}  // namespace

template <class T>
u32 ApplyTables(MVThreadContext& context, Error& error, const ImageView<T>& image, const void* const* tables)
{
    BaseWork work(context, error);
    if (!image.data) return work.Fail(Error::BadArgument);
    if (image.channels == 0) return 1;
    if (!tables) return work.Fail(Error::BadArgument);
    if (std::all_of(tables, tables + image.channels, [](const void* table) { return !table; })) return 1;

    const PlanFor<T> plan(tables, image.channels, image.SamplesPerRow() * image.height);
    if (!work.MayReport() && image.IsContiguous()) {
        plan.Map(image.data, size_t(image.width) * image.height);
        return 1;
    }
    for (u32 y = 0; y < image.height; ++y) {
        plan.Map(image.Row(y), image.width);
        if (!work.Report(y, image.height)) return 0;
    }
    return 1;
}

template u32 ApplyTables(MVThreadContext&, Error&, const ImageView<u8>&, const void* const*);
template u32 ApplyTables(MVThreadContext&, Error&, const ImageView<u16>&, const void* const*);

u32 MV40_ApplyLUTsToImage(void* buffer, u32 width, u32 height, u32 channels, u32 rowStride, const void* const* luts,
                          u32 flags)
{
    return InBaseCall("MV40_ApplyLUTsToImage", [&](MVThreadContext& context, Error& error) {
        return WithSamples(buffer, flags, [&]<class T>(T* data) {
            const ImageView<T> image = {data, width, height, channels, rowStride};
            return ApplyTables(context, error, image, luts);
        });
    });
}

}  // namespace zlv
