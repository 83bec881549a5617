#include "frontends/ConnectionStarter.h"

#include <cstdint>
#include <new>
#include <utility>

#include "frontends/NetListener.h"
#include "frontends/ScarcityPause.h"

ConnectionStarter& ConnectionStarter::getInstance() {
    static auto* const instance = new ConnectionStarter;
    return *instance;
}

ConnectionStarter::ConnectionStarter() : Thread("Connections"), m_lock(System::Mutex::Normal) {}

void ConnectionStarter::add(System::Descriptor connection) {
    while (!tryAdd(connection))
        pauseForScarcity();
    m_added.signal();
}

bool ConnectionStarter::tryAdd(System::Descriptor& connection) {
    const System::Lock lock(m_lock);
    try {
        m_waiting.emplace_back();
    } catch (const std::bad_alloc&) {
        return false;
    }
    m_waiting.back() = std::move(connection);
    return true;
}

System::Descriptor ConnectionStarter::next() {
    const System::Lock lock(m_lock);
    while (m_waiting.empty())
        m_added.wait(m_lock);
    System::Descriptor connection = std::move(m_waiting.front());
    m_waiting.pop_front();
    return connection;
}

void ConnectionStarter::threadLoop(System::Thread*) {
    for (;;) {
        const auto descriptor = static_cast<std::intptr_t>(next().release());
        NetListener::startAnonymousThread(reinterpret_cast<void*>(descriptor));
    }
}
