#ifndef TOVOFORMULA_SRC_IFDEPTHGUARD_H
#define TOVOFORMULA_SRC_IFDEPTHGUARD_H

namespace tovo::detail {

// Leaves the depth of IF conditions as it was found, however the walk ends.
class IfDepthGuard {
public:
    explicit IfDepthGuard(int& depth) noexcept : m_Depth(depth), m_Found(depth) {}
    ~IfDepthGuard() { m_Depth = m_Found; }

    IfDepthGuard(const IfDepthGuard&) = delete;
    IfDepthGuard& operator=(const IfDepthGuard&) = delete;

private:
    int& m_Depth;
    const int m_Found;
};

} // namespace tovo::detail

#endif
