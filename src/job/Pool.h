#ifndef TOVOJOB_SRC_POOL_H
#define TOVOJOB_SRC_POOL_H

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace tovo::job {

// Things that one thread at a time may use, kept for whoever needs one next.
template <typename Thing>
class Pool {
public:
    // One that is idle, or else what make() returns.
    template <typename Make>
    std::unique_ptr<Thing> Take(Make make)
    {
        {
            const std::lock_guard lock(m_Mutex);
            if (!m_Idle.empty()) {
                std::unique_ptr<Thing> thing = std::move(m_Idle.back());
                m_Idle.pop_back();
                return thing;
            }
        }
        return make();
    }
    void GiveBack(std::unique_ptr<Thing> thing)
    {
        const std::lock_guard lock(m_Mutex);
        m_Idle.push_back(std::move(thing));
    }

private:
    std::mutex m_Mutex;
    std::vector<std::unique_ptr<Thing>> m_Idle;
};

} // namespace tovo::job

#endif
