#pragma once

#include <sched.h>

namespace Measuring {

enum class Cores { One, All };

/// "1 core" or "all cores", for a row of a table.
const char* nameOf(Cores cores);

/// While it lives, this process and every process started meanwhile run on one core when that was asked
/// for; processes started earlier are left alone.
class CorePinning {
public:
    explicit CorePinning(Cores cores);
    ~CorePinning();
    CorePinning(const CorePinning&) = delete;
    CorePinning& operator=(const CorePinning&) = delete;

private:
    cpu_set_t m_before;
};

} // namespace Measuring
