// The owner of one layer's per-thread records.
//
// A thread's record comes into being when the thread first asks for it. The list of all records is what a teardown
// frees, also for threads that live on. A record whose thread has ended is either destroyed (Release) or kept, idle,
// and given to the next thread that needs one (Retire): a host with many short threads does not grow for ever.
#pragma once

#include "platform/platform.h"

#include <new>

namespace zlv {

template <class T>
class ThreadContextSlot {
public:
    // A slot lives in static storage, without constructor or destructor: the library's load and unload drive it.
    void Initialize(platform::SlotEndHook atThreadEnd)
    {
        list_.Initialize();
        index_ = platform::AllocateSlot(atThreadEnd);
    }

    // This thread's record, made if need be; null when it can't be had.
    T* Get()
    {
        if (index_ == platform::kNoSlot) return nullptr;
        if (void* const value = platform::GetSlot(index_)) return &static_cast<Node*>(value)->record;
        return Make();
    }

    // This thread's record, or null; never makes one.
    T* Find() const
    {
        if (index_ == platform::kNoSlot) return nullptr;
        void* const value = platform::GetSlot(index_);
        return value ? &static_cast<Node*>(value)->record : nullptr;
    }

    // Gives an ending thread its record back, whose slot the system has emptied already.
    void Restore(void* value) { (void)platform::SetSlot(index_, value); }

    // Destroys this thread's record. It stays if the system refuses to empty the slot.
    void Release()
    {
        if (Node* const node = Detach()) {
            const platform::CriticalSectionLock lock(list_);
            Unlink(node);
            Destroy(node);
        }
    }

    // Keeps this thread's record, reset, for another thread.
    void Retire()
    {
        if (Node* const node = Detach()) {
            node->record.~T();
            new (&node->record) T();
            GiveIdle(node);
        }
    }

    // Frees every record. Their threads must not be inside the library.
    void TearDown()
    {
        if (index_ != platform::kNoSlot) platform::FreeSlot(index_);
        index_ = platform::kNoSlot;
        {
            const platform::CriticalSectionLock lock(list_);
            while (first_) {
                Node* const node = first_;
                Unlink(node);
                Destroy(node);
            }
            idle_ = nullptr;
        }
        list_.Delete();
    }

    // Records in the list, idle ones included.
    u32 CountRecords()
    {
        const platform::CriticalSectionLock lock(list_);
        u32 count = 0;
        for (const Node* node = first_; node; node = node->next) ++count;
        return count;
    }

private:
    struct Node {
        T record;
        Node* previous = nullptr;
        Node* next = nullptr;
        Node* nextIdle = nullptr;
    };

    T* Make()
    {
        Node* node = TakeIdle();
        const bool isNew = !node;
        if (isNew) {
            void* const memory = platform::Allocate(sizeof(Node));
            if (!memory) return nullptr;
            node = new (memory) Node();
        }
        if (!platform::SetSlot(index_, node)) {
            if (isNew) Destroy(node);
            else GiveIdle(node);
            return nullptr;
        }
        if (isNew) Append(node);
        return &node->record;
    }

    Node* TakeIdle()
    {
        const platform::CriticalSectionLock lock(list_);
        Node* const node = idle_;
        if (node) idle_ = node->nextIdle;
        return node;
    }

    void GiveIdle(Node* node)
    {
        const platform::CriticalSectionLock lock(list_);
        node->nextIdle = idle_;
        idle_ = node;
    }

    // Empties this thread's slot and returns what it held, or null.
    Node* Detach()
    {
        if (index_ == platform::kNoSlot) return nullptr;
        Node* const node = static_cast<Node*>(platform::GetSlot(index_));
        return node && platform::SetSlot(index_, nullptr) ? node : nullptr;
    }

    void Append(Node* node)
    {
        const platform::CriticalSectionLock lock(list_);
        node->previous = last_;
        (last_ ? last_->next : first_) = node;
        last_ = node;
    }

    void Unlink(Node* node)
    {
        (node->previous ? node->previous->next : first_) = node->next;
        (node->next ? node->next->previous : last_) = node->previous;
    }

    static void Destroy(Node* node)
    {
        node->~Node();
        platform::Free(node);
    }

    platform::SlotIndex index_ = platform::kNoSlot;
    Node* first_ = nullptr;
    Node* last_ = nullptr;
    Node* idle_ = nullptr;
    platform::CriticalSection list_;
};

}  // namespace zlv
