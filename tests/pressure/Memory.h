#ifndef TOVOFORMULA_TESTS_MEMORY_H
#define TOVOFORMULA_TESTS_MEMORY_H

// All memory of this program and its libraries, so that a test can have a piece of it refused.

namespace tovo::test {

// Refuses one piece of memory to this thread, during its life: the first that is asked for, the
// second, and so on.
class Refusal {
public:
    explicit Refusal(int count);
    ~Refusal();

    Refusal(const Refusal&) = delete;
    Refusal& operator=(const Refusal&) = delete;

    bool HasHappened() const;
};

// How many pieces are in use, on all threads.
long PiecesInUse();

} // namespace tovo::test

#endif
