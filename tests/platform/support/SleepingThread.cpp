#include "support/SleepingThread.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "support/Waiting.h"

namespace {

constexpr int kLooks = 10;

bool sleeps(int thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string id;
    std::string name;
    std::string state;
    file >> id >> name >> state;
    return state == "S";
}

} // namespace

void SleepingThread::isMe() {
    m_id = static_cast<int>(::syscall(SYS_gettid));
}

bool SleepingThread::fallsAsleep() const {
    int asleep = 0;
    return eventually([&] {
        asleep = m_id != 0 && sleeps(m_id) ? asleep + 1 : 0;
        return asleep == kLooks;
    });
}
