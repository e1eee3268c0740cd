// What a call of the seam carver shares with its two workers.
#pragma once

#include "platform/platform.h"
#include "runtime/error.h"
#include "seam/seam_image.h"

namespace zlv {

using Zelvane::CLImage;

// One mutex a row, which its worker owns until its half of that row is done: a signal that is given once.
class RowMutexes {
public:
    RowMutexes() = default;
    ~RowMutexes() { Close(); }
    RowMutexes(const RowMutexes&) = delete;
    RowMutexes& operator=(const RowMutexes&) = delete;

    // Unowned ones. A list that is already filled stays as it is. False, and empty, when the system gives no more.
    [[nodiscard]] bool Create(u32 rows);

    u32 GetCount() const { return u32(mutexes_.GetCount()); }
    platform::OwnedMutex* operator[](u32 row) const { return mutexes_[row].mutex; }

private:
    struct Entry {
        platform::OwnedMutex* mutex;
    };

    void Close();

    ZLVArray<Entry> mutexes_;
};

// One half of the columns, and the worker that computes them.
struct SeamWorker {
    const CLImage<u16>* energy = nullptr;
    const CLImage<i32>* bias = nullptr;  // may be empty
    CLImage<i32>* cost = nullptr;
    const RowMutexes* ownRows = nullptr;
    const RowMutexes* otherRows = nullptr;
    platform::Event* ready = nullptr;  // set by the worker when it holds all its mutexes
    platform::Event* go = nullptr;     // set by the coordinator
    u32 firstColumn = 0;
    u32 endColumn = 0;
    Error result = Error::None;
};

// Lives on the stack of a call. Closes what it still holds.
class SeamContext {
public:
    bool singleThread = false;
    Error error = Error::None;
    RowMutexes rightRowDone;
    RowMutexes leftRowDone;
    SeamWorker left;
    SeamWorker right;

    SeamContext() = default;
    ~SeamContext() { CloseEvents(); }
    SeamContext(const SeamContext&) = delete;
    SeamContext& operator=(const SeamContext&) = delete;

    // Four new ones in the place of those before. False when the system gives no more.
    [[nodiscard]] bool RenewEvents();

private:
    void CloseEvents();
};

}  // namespace zlv
