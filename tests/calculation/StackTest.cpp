#include <functional>
#include <pthread.h>

#include <TovoFormula/MessageIds.h>
#include <calculation/NetObjects.h>

namespace tovo::test {
namespace {

// Runs the work on a thread with a stack of that size.
void RunOnStack(std::size_t size, std::function<void()> work)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
    pthread_t thread{};
    const auto enter = [](void* given) -> void* {
        (*static_cast<std::function<void()>*>(given))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, enter, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

class Stack : public Job {
public:                                // a table chooses among them
    static constexpr int kChain = 999; // the deepest that any stack may carry

    template <typename Object, typename... Arguments>
    Object& Keep(Arguments&&... arguments)
    {
        auto object = std::make_unique<Object>(std::forward<Arguments>(arguments)...);
        Object& kept = *object;
        m_Kept.push_back(std::move(object));
        return kept;
    }
    static CString NameOf(int index) { return Wide("f" + std::to_string(index)); }
    static CString TextOf(int index)
    {
        return index == 0 ? CString(u"1") : Wide("F(f" + std::to_string(index - 1) + ")+1");
    }
    template <typename Class>
    IFormulaObj* ChainOfClass()
    {
        IFormulaObj* top = nullptr;
        for (int index = 0; index < kChain; ++index) {
            auto& formula = Keep<Class>(&m_Set);
            CString name = NameOf(index);
            formula.SetName(name);
            formula.SetFromEncodedString(TextOf(index));
            m_Set.AddFormula(&formula);
            top = &formula;
        }
        return top;
    }
    IFormulaObj* ChainOfHosts()
    {
        IFormulaObj* top = nullptr;
        for (int index = 0; index < kChain; ++index) {
            auto& formula = Keep<OwnFormula>(NameOf(index), m_Set);
            formula.m_Expression.SetFromEncodedString(TextOf(index));
            m_Set.m_HostFormulas[NameOf(index)] = &formula;
            top = &formula;
        }
        return top;
    }
    // A formula over a table whose cell is a formula over a table, and so on.
    IFormulaObj* ChainOfTables()
    {
        IFormulaObj* top = &Formula(NameOf(0), u"1");
        for (int index = 1; index < kChain / 2; ++index) {
            const std::string below = "Ff" + std::to_string(index - 1);
            Table(Wide("t" + std::to_string(index)), "1000", {below.c_str(), ""});
            top = &Formula(NameOf(index), Wide("T(t" + std::to_string(index) + ")+1"));
        }
        return top;
    }

private:
    std::vector<std::unique_ptr<CObject>> m_Kept;
};

// However small the stack, a chain has its value or is refused as too deep, and what was refused
// has its value where there is room.
TEST_F(Stack, CarriesAChainOrRefusesIt)
{
    struct Kind {
        const char* name;
        IFormulaObj* (Stack::*make)();
        double value;
    };
    const Kind kinds[] = {
        {"stock", &Stack::ChainOfClass<FormulaImpl>, kChain},
        {"derived", &Stack::ChainOfClass<PassingFormula>, kChain},
        {"of a host", &Stack::ChainOfHosts, kChain},
        {"tables", &Stack::ChainOfTables, kChain / 2},
    };
    for (const Kind& kind : kinds)
        for (const std::size_t kibibytes : {128u, 256u, 512u, 1024u, 4096u}) {
            SCOPED_TRACE(std::string(kind.name) + " in " + std::to_string(kibibytes) + " KiB");
            m_Set.m_HostFormulas.clear();
            IFormulaObj& top = *(this->*kind.make)();
            unsigned int message = 0;
            RunOnStack(kibibytes << 10, [&] {
                const bool isDone = top.Calculate(message, nullptr) != 0;
                EXPECT_EQ(message, isDone ? 0u : MSG_GENERAL_FAILURE);
                CScannedVariables scanned;
                top.GetVariables(scanned, 0, 0);
                top.GetVariables(scanned, 1, 0);
                EXPECT_TRUE(NestedNames::m_NestedFmlaNames.IsEmpty());
            });
            m_Set.StartNewPass();
            message = 0;
            RunOnStack(std::size_t{32} << 20, [&] {
                EXPECT_EQ(top.Calculate(message, nullptr), 1) << message;
                EXPECT_EQ(top.GetValue(), kind.value);
            });
        }
}

#if defined(NDEBUG) && !defined(__SANITIZE_THREAD__)
// What a thread of a C library with small stacks has, and the main thread of other systems.
TEST_F(Stack, CarriesTheDeepestChainInHalfAMebibyte)
{
    FormulaImpl& top = dynamic_cast<FormulaImpl&>(*ChainOfClass<FormulaImpl>());
    RunOnStack(std::size_t{640} << 10, [&] {
        unsigned int message = 0;
        EXPECT_EQ(top.Calculate(message, nullptr), 1) << message;
    });
}
#endif

} // namespace
} // namespace tovo::test
