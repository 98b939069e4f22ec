#include <pthread.h>

#include <cstdlib>

#include "platform/thread_block.h"

namespace pgkit::platform {

namespace {

class Key {
  public:
    Key() noexcept { isUsable_ = ::pthread_key_create(&key_, std::free) == 0; }
    // Blocks of threads that are still there are lost, but for that of the thread which unloads the
    // module.
    ~Key() {
        if (!isUsable_) return;
        std::free(::pthread_getspecific(key_));
        ::pthread_key_delete(key_);
        isUsable_ = false;
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    void* Block() noexcept {
        if (!isUsable_) return nullptr;
        if (void* const block = ::pthread_getspecific(key_)) return block;
        void* const block = std::calloc(1, kThreadBlockSize);
        if (block == nullptr || ::pthread_setspecific(key_, block) == 0) return block;
        std::free(block);
        return nullptr;
    }

  private:
    pthread_key_t key_{};
    bool isUsable_ = false;
};

Key key;

}  // namespace

void* ThreadBlock() noexcept { return key.Block(); }

}  // namespace pgkit::platform
