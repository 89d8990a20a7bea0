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
            return AllocateAfresh(size);
        Block* const block = blocks.first;
        blocks.first = block->next;
        --blocks.count;
        return block;
    }
    static void Free(void* memory, std::size_t size) noexcept
    {
        if (size != kBlockSize || blocks.count >= blocks.most)
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
        int most = 0; // none before the thread's first allocation and after its end

        void Push(void* memory)
        {
            first = new (memory) Block{first};
            ++count;
        }
    };
    // Gives the blocks back when the thread ends; from then on none is kept.
    struct Keeper {
        Keeper() { blocks.most = kMost; }
        ~Keeper()
        {
            blocks.most = 0;
            while (Block* const block = blocks.first) {
                blocks.first = block->next;
                ::operator delete(block);
            }
            blocks.count = 0;
        }
    };

    // To arrange for something at the end of a thread may take memory, which nothing that is freed
    // can ask for.
    static void* AllocateAfresh(std::size_t size)
    {
        static thread_local const Keeper keeper;
        return ::operator new(size);
    }

    static inline constinit thread_local Blocks blocks;
};

} // namespace tovo::detail

#endif
