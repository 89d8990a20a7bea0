#include "Measure.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <pthread.h>
#include <span>
#include <sys/mman.h>

#include "Alternating.h"
#include "Jobs.h"

// The stack that one call takes for a formula that names a formula, and so on a thousand times. The
// call runs on a thread whose stack is filled with a pattern; what lies between the frame of the
// caller and the last byte that lost the pattern is what the call took.

namespace bench {
namespace {

constexpr std::size_t kChainLength = 1000;
constexpr std::size_t kStackSize = std::size_t{16} << 20;
constexpr unsigned char kPattern = 0xA5;

class FilledStack {
public:
    FilledStack()
    {
        void* const mapped = mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE,
                                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
        Require(mapped != MAP_FAILED, "no memory for a stack");
        m_Bytes = {static_cast<unsigned char*>(mapped), kStackSize};
        std::memset(m_Bytes.data(), kPattern, m_Bytes.size());
    }
    ~FilledStack() { munmap(m_Bytes.data(), m_Bytes.size()); }
    FilledStack(const FilledStack&) = delete;
    FilledStack& operator=(const FilledStack&) = delete;

    // Runs the work on a thread with this stack, and returns how many bytes of it the work took.
    std::size_t Run(std::function<void()> work)
    {
        m_Work = std::move(work);
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstack(&attributes, m_Bytes.data(), m_Bytes.size());
        pthread_t thread{};
        Require(pthread_create(&thread, &attributes, Enter, this) == 0, "no thread");
        pthread_join(thread, nullptr);
        pthread_attr_destroy(&attributes);

        const auto isTouched = [](unsigned char byte) { return byte != kPattern; };
        const auto lowest = std::find_if(m_Bytes.begin(), m_Bytes.end(), isTouched);
        return static_cast<std::size_t>(m_Caller - &*lowest);
    }

private:
    static void* Enter(void* stack)
    {
        auto& self = *static_cast<FilledStack*>(stack);
        self.m_Caller = static_cast<unsigned char*>(__builtin_frame_address(0));
        self.m_Work();
        return nullptr;
    }

    std::span<unsigned char> m_Bytes;
    std::function<void()> m_Work;
    unsigned char* m_Caller = nullptr;
};

// Each formula adds the input to the one below; the lowest is the input.
class Chain {
public:
    Chain() : m_Job({{"Input", 1.5}})
    {
        m_Formulas.push_back(m_Job.MakeFormula("Formula 1", "V(Input)"));
        while (m_Formulas.size() < kChainLength) {
            const std::size_t below = m_Formulas.size();
            m_Formulas.push_back(
                m_Job.MakeFormula("Formula " + std::to_string(below + 1),
                                  "F(Formula " + std::to_string(below) + ")+V(Input)"));
        }
    }

    void Calculate()
    {
        const double input = m_Inputs.Next();
        m_Job.SetValue(0, input);
        RequireEqual(ValueOf(*m_Formulas.back()), input * kChainLength, "chain");
    }

private:
    OurJob m_Job;
    std::vector<std::unique_ptr<FormulaImpl>> m_Formulas;
    Alternating<double> m_Inputs = {1.5, 2.75};
};

} // namespace

void NoteStack(ResultTable& table)
{
    Chain chain;
    for (const char* const row : {"first call, nothing checked", "second call"}) {
        FilledStack stack;
        const std::size_t bytes = stack.Run([&chain] { chain.Calculate(); });
        table.Note(kStack, row, Engine::Ours, static_cast<double>(bytes));
    }
}

} // namespace bench
