#ifndef TOVOFORMULA_SRC_BLOCKCACHE_H
#define TOVOFORMULA_SRC_BLOCKCACHE_H

#include <cstddef>
#include <new>

namespace tovo::detail {

// Memory for objects of one size that come and go by the dozen: what one gives back on a thread,
// the next one on that thread gets. Keeps a limited number of blocks for each thread, to its end.
//
// Under AddressSanitizer nothing is kept, so that it sees an object used after its end.
template <std::size_t kBlockSize>
class BlockCache {
public:
    // For the operators new and delete of a class; what is derived from it may be larger.
    static void* Allocate(std::size_t size)
    {
        if (size != kBlockSize || !blocks.first)
            return ::operator new(size);
        Block* const block = blocks.first;
        blocks.first = block->next;
        --blocks.count;
        return block;
    }
    static void Free(void* memory, std::size_t size) noexcept
    {
        if (size != kBlockSize || blocks.count >= kMost || (blocks.count == 0 && !Keep()))
            ::operator delete(memory);
        else
            blocks.Push(memory);
    }

private:
#ifdef __SANITIZE_ADDRESS__
    static constexpr int kMost = 0;
#else
    static constexpr int kMost = 256;
#endif

    struct Block {
        Block* next;
    };
    struct Blocks {
        Block* first = nullptr;
        int count = 0;

        void Push(void* memory)
        {
            first = new (memory) Block{first};
            ++count;
        }
    };
    // Gives the blocks back when the thread ends; from then on none is kept.
    struct Keeper {
        ~Keeper()
        {
            isOver = true;
            while (Block* const block = blocks.first) {
                blocks.first = block->next;
                ::operator delete(block);
            }
            blocks.count = 0;
        }
        bool isOver = false;
    };

    static bool Keep()
    {
        static thread_local Keeper keeper;
        return !keeper.isOver;
    }

    static inline constinit thread_local Blocks blocks;
};

} // namespace tovo::detail

#endif
