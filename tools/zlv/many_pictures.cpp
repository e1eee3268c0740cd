// Applies a chain to many pictures, several at a time.
//
// Each worker takes the next picture until none is left. A thread of its own has its own library callback, so progress
// and Ctrl-C reach every effect that is running.
#include "many_pictures.h"

#include "errors.h"
#include "interrupt.h"
#include "output_format.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <system_error>
#include <thread>

namespace zlv {
namespace {

class PictureWorkers {
public:
    PictureWorkers(const std::vector<ChainStep>& steps, const std::vector<PictureJob>& pictures,
                   const ApplySettings& settings)
        : steps_(steps), pictures_(pictures), settings_(settings), bar_(settings.progress, pictures.size())
    {
    }

    int Run()
    {
        const size_t count = std::clamp<size_t>(settings_.jobs, 1, std::max<size_t>(pictures_.size(), 1));
        StartHelpers(count - 1);
        Work();
        for (std::thread& helper : helpers_) helper.join();
        return Report();
    }

private:
    // Where the system gives no more threads, fewer do the work.
    void StartHelpers(size_t count)
    {
        try {
            while (helpers_.size() < count) helpers_.emplace_back([this] { Work(); });
        } catch (const std::system_error&) {
        }
    }

    void Work()
    {
        for (size_t i; !IsInterrupted() && (i = next_++) < pictures_.size();) {
            const std::string failure = TryOne(pictures_[i]);
            if (failure.empty()) ++done_;
            else if (!IsInterrupted()) bar_.Say("zlv: " + failure);
        }
    }

    // A sentence about what went wrong, or nothing.
    std::string TryOne(const PictureJob& job)
    {
        try {
            DoOne(job);
            return {};
        } catch (const std::bad_alloc&) {
            return "\"" + job.input + "\": there is not enough memory for it.";
        } catch (const std::exception& error) {
            return error.what();
        }
    }

    void DoOne(const PictureJob& job)
    {
        const Format format = FormatFor(job.output, settings_.format);
        PartProgress part(bar_, job.input);
        Picture picture = ReadPicture(job.input);
        Bytes bytes;
        try {
            picture = ApplyChain(steps_, std::move(picture), [&part](double fraction) { part.Reach(fraction); });
            bytes = EncodePicture(picture, format, settings_.jpegQuality);
        } catch (const PictureError& error) {
            throw PictureError("\"" + job.input + "\": " + error.what() + ".");
        }
        WriteWholeFile(job.output, bytes);
        part.Reach(1);
    }

    int Report()
    {
        const size_t all = pictures_.size();
        if (IsInterrupted()) {
            bar_.Say("zlv: Interrupted; " + std::to_string(done_) + " of " + std::to_string(all) +
                     " pictures are done.");
            return kExitInterrupted;
        }
        if (done_ == all) return kExitDone;
        if (all > 1)
            bar_.Say("zlv: " + std::to_string(all - done_) + " of " + std::to_string(all) + " pictures failed.");
        return kExitFailed;
    }

    const std::vector<ChainStep>& steps_;
    const std::vector<PictureJob>& pictures_;
    const ApplySettings& settings_;
    ProgressBar bar_;
    std::vector<std::thread> helpers_;
    std::atomic<size_t> next_ = 0, done_ = 0;
};

}  // namespace

int ApplyToPictures(const std::vector<ChainStep>& steps, const std::vector<PictureJob>& pictures,
                    const ApplySettings& settings)
{
    return PictureWorkers(steps, pictures, settings).Run();
}

}  // namespace zlv
