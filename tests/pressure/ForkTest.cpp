#include <atomic>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <TovoFormula/TovoFormula.h>

namespace tovo::test {
namespace {

// Takes the locks of the process, one after the other and one inside the other.
void UseWhatIsShared()
{
    static constexpr AfxStringResource kStrings[] = {{6600, u"newest"}};
    AFX_EXTENSION_MODULE record;
    EXPECT_EQ(AfxInitExtensionModule(record, kStrings, 1), 1);
    const CDynLinkLibrary newest(record);
    SetLocaleSetting(LOCALE_SLIST, u",");
    CFmlaExprBase::ReInitExprNames();
}

// A lock that stays taken ends the child by its alarm.
[[noreturn]] void WorkAsChild()
{
    constexpr unsigned kSeconds = 20;
    alarm(kSeconds);
    UseWhatIsShared();
    CalcSetImpl set;
    FormulaImpl sum(&set, u"Sum", u"SUM(1,2)");
    unsigned int message = 0;
    const bool isDone = sum.Calculate(message, nullptr) != 0;
    _exit(isDone && sum.GetValue() == 3.0 ? 0 : 1);
}

TEST(Fork, ChildFindsNoLockTaken)
{
    std::atomic<bool> isOver = false;
    std::thread hammer([&] {
        while (!isOver)
            UseWhatIsShared();
    });
    for (int child = 0; child < 100; ++child) {
        const pid_t id = fork();
        ASSERT_GE(id, 0);
        if (id == 0)
            WorkAsChild();
        int status = -1;
        EXPECT_EQ(waitpid(id, &status, 0), id);
        if (status != 0) {
            ADD_FAILURE() << "child " << child << " ended with " << status;
            break;
        }
    }
    isOver = true;
    hammer.join();
    SetLocaleSetting(LOCALE_SLIST, u"");
    CFmlaExprBase::ReInitExprNames();
}

} // namespace
} // namespace tovo::test
