#include "seam/seam_context.h"

#include <initializer_list>
#include <utility>

namespace zlv {

void RowMutexes::Close()
{
    for (u32 i = 0; i < GetCount(); ++i) platform::CloseMutex(mutexes_[i].mutex);
    mutexes_.Clear();
}

bool RowMutexes::Create(u32 rows)
{
    if (GetCount() > 0) return true;
    if (!mutexes_.Resize(i32(rows))) return false;
    for (u32 i = 0; i < rows; ++i) mutexes_[i].mutex = nullptr;
    for (u32 i = 0; i < rows; ++i) {
        mutexes_[i].mutex = platform::CreateOwnedMutex();
        if (mutexes_[i].mutex) continue;
        Close();
        return false;
    }
    return true;
}

bool SeamContext::RenewEvents()
{
    CloseEvents();
    for (platform::Event** const event : {&left.ready, &left.go, &right.ready, &right.go}) {
        *event = platform::CreateManualEvent();
        if (!*event) return false;
    }
    return true;
}

void SeamContext::CloseEvents()
{
    for (platform::Event** const event : {&left.ready, &left.go, &right.ready, &right.go}) {
        platform::CloseEvent(std::exchange(*event, nullptr));
    }
}

}  // namespace zlv
