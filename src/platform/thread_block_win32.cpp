#include <windows.h>

#include <cstdlib>

#include "platform/thread_block.h"

namespace pgkit::platform {

namespace {

void CALLBACK Free(void* block) { std::free(block); }

class Index {
  public:
    Index() noexcept : index_(FlsAlloc(Free)) {}
    // Frees the blocks of all threads.
    ~Index() {
        if (index_ != FLS_OUT_OF_INDEXES) FlsFree(index_);
        index_ = FLS_OUT_OF_INDEXES;
    }
    Index(const Index&) = delete;
    Index& operator=(const Index&) = delete;

    void* Block() noexcept {
        if (index_ == FLS_OUT_OF_INDEXES) return nullptr;
        // Getters of the system clear its last error, which is the host's.
        const DWORD lastError = GetLastError();
        void* block = FlsGetValue(index_);
        if (block == nullptr) block = NewBlock();
        SetLastError(lastError);
        return block;
    }

  private:
    void* NewBlock() noexcept {
        void* const block = std::calloc(1, kThreadBlockSize);
        if (block == nullptr || FlsSetValue(index_, block)) return block;
        std::free(block);
        return nullptr;
    }

    DWORD index_;
};

Index index;

}  // namespace

void* ThreadBlock() noexcept { return index.Block(); }

}  // namespace pgkit::platform
