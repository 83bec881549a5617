// The accept loop on its own port, for which each case has a network of its own.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "frontends/ConnectionStarter.h"
#include "frontends/NetListener.h"
#include "platform/Descriptors.h"
#include "support/Connection.h"
#include "support/Lines.h"
#include "support/RunningHandler.h"
#include "support/SocketTable.h"
#include "support/SystemCalls.h"
#include "support/Waiting.h"

namespace {

const std::string kRequest = request("scripted");
const std::string kAnswer = answer("scripted ok");

sockaddr_in addressOf(const char* host) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(Connection::kPort);
    ::inet_pton(AF_INET, host, &address.sin_addr);
    return address;
}

bool connectTo(const char* host, const System::Descriptor& socket) {
    const sockaddr_in address = addressOf(host);
    return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

/// A station that has reached the listener, as soon as that listens.
Connection connectStation() {
    EXPECT_TRUE(eventually(isListening));
    return Connection();
}

class NetListenerPortTest : public RunningHandler {
protected:
    /// Never destroyed: its thread stays in `accept`.
    static NetListener& startListener() {
        static NetListener* const listener = new NetListener;
        EXPECT_TRUE(listener->start());
        return *listener;
    }
};

} // namespace

TEST_F(NetListenerPortTest, ServesAnyNumberOfStationsAtOnce) {
    NetListener& listener = startListener();
    const Connection first = connectStation();
    const Connection second = connectStation();
    const Connection third = connectStation();
    for (const Connection* station : {&third, &first, &second, &first})
        expectExchange(*station, kRequest, kAnswer);
    EXPECT_EQ(listener.getState(), StatedThread::Running);
}

TEST_F(NetListenerPortTest, AHalfSentCommandHoldsUpNobodyElse) {
    startListener();
    const Connection slow = connectStation();
    slow.send("\x02scrip");
    const Connection quick = connectStation();
    expectExchange(quick, kRequest, kAnswer);
    expectExchange(slow, "ted\x03\n", kAnswer);
}

TEST_F(NetListenerPortTest, ListensOnTheLoopbackAddressOnly) {
    startListener();
    const Connection station = connectStation();
    const System::Descriptor elsewhere = System::openTcpSocket();
    EXPECT_FALSE(connectTo("127.0.0.2", elsewhere)) << "not even on another address of this machine";
    EXPECT_EQ(errno, ECONNREFUSED);
}

TEST_F(NetListenerPortTest, WaitsForAPortThatIsTaken) {
    System::Descriptor other = System::openTcpSocket();
    const sockaddr_in address = addressOf("127.0.0.1");
    ASSERT_EQ(::bind(other.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(other.get(), 1), 0);
    startListener();
    const Connection notServed = connectStation();
    notServed.send(kRequest);
    EXPECT_TRUE(notServed.isSilentFor(std::chrono::milliseconds(150)));
    other.reset();
    const Connection served = connectStation();
    expectExchange(served, kRequest, kAnswer);
}

TEST_F(NetListenerPortTest, IsReadyToServeStationsBeforeItListens) {
    const System::Descriptor other = System::openTcpSocket();
    const sockaddr_in address = addressOf("127.0.0.1");
    ASSERT_EQ(::bind(other.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    startListener();
    EXPECT_TRUE(ConnectionStarter::getInstance().isValid());
}

TEST_F(NetListenerPortTest, WithoutAThreadToServeStationsItDoesNotListen) {
    NetListener listener;
    SystemCalls::failThreads(1);
    EXPECT_FALSE(listener.startOrDie());
    EXPECT_EQ(SystemCalls::threadAttempts(), 2) << "the dispatcher's and one more";
    EXPECT_EQ(listener.getState(), StatedThread::Dead);
    EXPECT_FALSE(ConnectionStarter::getInstance().isValid());
    EXPECT_FALSE(connectTo("127.0.0.1", System::openTcpSocket()));
}

TEST_F(NetListenerPortTest, AStationWaitsWhileThereIsNoThreadForIt) {
    startListener();
    const Connection first = connectStation();
    expectExchange(first, kRequest, kAnswer);
    const int before = SystemCalls::threadAttempts();
    SystemCalls::failThreads(3);
    const Connection station = connectStation();
    expectExchange(station, kRequest, kAnswer);
    EXPECT_EQ(SystemCalls::threadAttempts(), before + 4);
}

TEST_F(NetListenerPortTest, AStopIsNoticedWithTheNextConnection) {
    NetListener& listener = startListener();
    connectStation();
    listener.setState(StatedThread::Stopping, false);
    // Wakes it, unless it had not yet begun to wait.
    const System::Descriptor next = System::openTcpSocket();
    connectTo("127.0.0.1", next);
    listener.waitForDead();
    EXPECT_TRUE(eventually([&] { return !connectTo("127.0.0.1", System::openTcpSocket()); }));
}
