// The cost matrix on two threads. They advance row by row and meet at the split: the left one needs the right one's
// first column of the row before, the right one the left one's last column. A worker owns a mutex for each of its rows
// and lets go of it when the row is done; the other one waits for that mutex, and drops it at once.
//
// Every cell has one writer, and the mutex of a row orders reads of it after its writes. Waits end after a second, so
// that a dead partner is a code and not a hang. Both threads have always ended when the call returns: what they work on
// belongs to the call.
#include "seam/seam_cost.h"

#include <initializer_list>

namespace zlv {

namespace {

constexpr u32 kPatience = 1000;  // milliseconds

// Takes the mutexes of all own rows, tells so, and waits for the start.
bool GetReady(const SeamWorker& worker)
{
    // They are free: the workers of the seam before have released them all.
    for (u32 y = 0; y < worker.ownRows->GetCount(); ++y) (void)platform::AcquireMutex((*worker.ownRows)[y], 0);
    platform::SetManualEvent(worker.ready);
    return platform::WaitForEvent(worker.go, kPatience);
}

void TellRowDone(const SeamWorker& worker, u32 y) { platform::ReleaseMutex((*worker.ownRows)[y]); }

// Whether the other worker has finished its half of the row.
bool AwaitOther(const SeamWorker& worker, u32 y)
{
    platform::OwnedMutex* const done = (*worker.otherRows)[y];
    if (!platform::AcquireMutex(done, kPatience)) return false;
    platform::ReleaseMutex(done);
    return true;
}

// Runs computeRow(row, y) for all rows but the first; it returns false when the other worker did not come.
template <class ComputeRow>
Error RunRows(const SeamWorker& worker, ComputeRow computeRow)
{
    if (!GetReady(worker)) return Error::TimeOut;
    const auto rowAt = [&](u32 y) { return CostRow(*worker.energy, *worker.bias, *worker.cost, y); };
    rowAt(0).Begin(worker.firstColumn, worker.endColumn);
    TellRowDone(worker, 0);
    for (u32 y = 1; y < worker.cost->height; ++y) {
        if (!computeRow(rowAt(y), y)) return Error::TimeOut;
        TellRowDone(worker, y);
    }
    return Error::None;
}

// All columns but the last need nothing of the other half. A half of a single column (images of three) has only that
// one, which waits: the column behind it is the other worker's alone.
void RunLeft(void* argument)
{
    SeamWorker& worker = *static_cast<SeamWorker*>(argument);
    const u32 last = worker.endColumn - 1;
    worker.result = RunRows(worker, [&](const CostRow& row, u32 y) {
        if (last > 0) row.FromTwo(0, 0, 1);
        row.Inside(1, last);
        if (!AwaitOther(worker, y - 1)) return false;
        if (last > 0) row.Inside(last, last + 1);
        else row.FromTwo(0, 0, 1);
        return true;
    });
}

void RunRight(void* argument)
{
    SeamWorker& worker = *static_cast<SeamWorker*>(argument);
    const u32 last = worker.endColumn - 1;
    worker.result = RunRows(worker, [&](const CostRow& row, u32 y) {
        if (!AwaitOther(worker, y - 1)) return false;
        row.Inside(worker.firstColumn, last);
        row.FromTwo(last, last - 2, last - 1);
        return true;
    });
}

// A worker's thread. When it is closed it has ended, and a thread that was not to run has not run.
class WorkerThread {
public:
    WorkerThread(platform::ThreadFunction function, SeamWorker& worker)
        : thread_(platform::StartSuspendedThread(function, &worker))
    {
    }
    ~WorkerThread()
    {
        if (isRunning_) Join();
        platform::CloseThread(thread_);
    }
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    bool IsStarted() const { return thread_ != nullptr; }
    void Run()
    {
        isRunning_ = true;
        platform::ResumeThread(thread_);
    }
    void Join()
    {
        (void)platform::WaitForThread(thread_, platform::kWaitForever);
        isRunning_ = false;
    }

private:
    platform::Thread* const thread_;
    bool isRunning_ = false;
};

void FillWorkers(SeamContext& context, const CLImage<u16>& energy, CLImage<i32>& cost, const CLImage<i32>& bias)
{
    for (SeamWorker* const worker : {&context.left, &context.right}) {
        worker->energy = &energy;
        worker->bias = &bias;
        worker->cost = &cost;
        worker->result = Error::None;
    }
    context.left.ownRows = context.right.otherRows = &context.leftRowDone;
    context.left.otherRows = context.right.ownRows = &context.rightRowDone;
    context.left.firstColumn = 0;
    context.left.endColumn = context.right.firstColumn = energy.width / 2;
    context.right.endColumn = energy.width;
}

}  // namespace

Error ComputeCostThreaded(SeamContext& context, const CLImage<u16>& energy, CLImage<i32>& cost,
                          const CLImage<i32>& bias)
{
    if (!AreCostSizesUsable(energy, cost)) return Error::BadArgument;
    FillWorkers(context, energy, cost, bias);
    if (!context.RenewEvents()) return Error::OutOfMemory;

    SeamWorker &left = context.left, &right = context.right;
    WorkerThread rightThread(RunRight, right), leftThread(RunLeft, left);
    if (!rightThread.IsStarted() || !leftThread.IsStarted()) return Error::CouldNotRun;
    rightThread.Run();
    leftThread.Run();
    // A worker that is not told to go gives up by itself.
    if (!platform::WaitForEvent(left.ready, kPatience)) return Error::TimeOut;
    if (!platform::WaitForEvent(right.ready, kPatience)) return Error::TimeOut;
    platform::SetManualEvent(left.go);
    platform::SetManualEvent(right.go);
    rightThread.Join();
    leftThread.Join();
    return right.result != Error::None ? right.result : left.result;
}

}  // namespace zlv
