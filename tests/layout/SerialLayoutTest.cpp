#include <termios.h>

#include <cstdio>
#include <map>
#include <string>
#include <type_traits>

#include "devices/CommFSerial.h"
#include "devices/CommHandler.h"
#include "devices/CommInterface.h"
#include "devices/CommSerial.h"
#include "frontends/CommandClock.h"
#include "frontends/FlexListener.h"
#include "frontends/Listener.h"
#include "support/Layout.h"

namespace layout {

std::vector<Field> fieldsOf(Of<CommInterface>);
template struct Fields<CommInterface, &CommInterface::m_baudRates, &CommInterface::m_dataBits>;

std::vector<Field> fieldsOf(Of<Comm::Handle>);
template struct Fields<Comm::Handle, &Comm::Handle::m_mutex, &Comm::Handle::m_type,
                       &Comm::Handle::m_driver, &Comm::Handle::m_path>;

std::vector<Field> fieldsOf(Of<CommSerial>);
template struct Fields<CommSerial, &CommSerial::m_path, &CommSerial::m_device,
                       &CommSerial::m_savedAttributes>;

std::vector<Field> fieldsOf(Of<CommFSerial>);
template struct Fields<CommFSerial, &CommFSerial::m_path, &CommFSerial::m_stream,
                       &CommFSerial::m_savedAttributes>;

std::vector<Field> fieldsOf(Of<Listener>);
template struct Fields<Listener, &Listener::m_clock, &Listener::m_channel>;

std::vector<std::type_index> staticsOf(Of<Listener>);
template struct Statics<Listener, &Listener::command>;

std::vector<Field> fieldsOf(Of<FlexListener>);
template struct Fields<FlexListener, &FlexListener::m_clock, &FlexListener::m_channel>;

} // namespace layout

using namespace layout;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t kLineOperations = 7;

/// The seven operations that channels and drivers have in common.
template <typename Line>
void expectLineOperations() {
    using Parity = CommInterface::Parity;
    const std::vector<std::size_t> slots = {
        slotOf<DeviceResult(bool&)>(&Line::isOpen),
        slotOf<DeviceResult(const std::string&, unsigned, unsigned, unsigned, Parity)>(&Line::open),
        slotOf<DeviceResult()>(&Line::close),
        slotOf<DeviceResult(unsigned&, void*, int, unsigned)>(&Line::read),
        slotOf<DeviceResult(unsigned&, void*, int, unsigned, System::Mutex*)>(&Line::read_locked),
        slotOf<DeviceResult(const void*, int)>(&Line::write),
        slotOf<DeviceResult()>(&Line::flush),
    };
    ASSERT_EQ(slots.size(), kLineOperations);
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], i);
}

/// Gives access to what drivers do with their devices.
struct DeviceOperations : SerialLine {
    using SerialLine::closeDevice;
    using SerialLine::descriptor;
    using SerialLine::flushDevice;
    using SerialLine::forgetDevice;
    using SerialLine::mostWaiting;
    using SerialLine::openDevice;
};

/// That it takes the only slots that no other operation has.
template <typename Driver>
void expectDestructorBehindTheOperations() {
    using Its = DeviceOperations;
    const std::vector<std::size_t> slots = {
        slotOf<bool(const char*)>(&Its::openDevice), slotOf<int() const>(&Its::descriptor),
        slotOf<void()>(&Its::closeDevice),           slotOf<void()>(&Its::forgetDevice),
        slotOf<bool()>(&Its::flushDevice),           slotOf<std::size_t() const>(&Its::mostWaiting),
    };
    const std::size_t first = kLineOperations + kDestructorSlots;
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], first + i);
    EXPECT_TRUE(std::has_virtual_destructor_v<Driver>);
    EXPECT_EQ(numberOfSlots<Driver>(), first + slots.size());
}

} // namespace

TEST(CommInterfaceLayoutTest, ItHasTwoTablesAndNoVirtualDestructor) {
    expectFields(fieldsOf(Of<CommInterface>()), kPointer,
                 {typeid(std::map<unsigned, unsigned>), typeid(std::map<unsigned, unsigned>)});
    expectLineOperations<CommInterface>();
    EXPECT_FALSE(std::has_virtual_destructor_v<CommInterface>);
    EXPECT_EQ(numberOfSlots<CommInterface>(), kLineOperations);
}

TEST(CommInterfaceLayoutTest, TheParitiesHaveTheirNumbers) {
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<CommInterface::Parity>, unsigned>));
    EXPECT_EQ(CommInterface::None, 0u);
    EXPECT_EQ(CommInterface::Even, 1u);
    EXPECT_EQ(CommInterface::Odd, 2u);
}

TEST(CommHandleLayoutTest, FieldsAreInOrder) {
    const auto fields = fieldsOf(Of<Comm::Handle>());
    expectInOrder(fields, sizeof(CommInterface));
    EXPECT_EQ(fields[0].type, std::type_index(typeid(System::Mutex)));
    EXPECT_EQ(fields[1].type, std::type_index(typeid(Comm::PhysicalInterface)));
    EXPECT_EQ(fields[2].size, kPointer);
    EXPECT_EQ(fields[3].type, std::type_index(typeid(std::string)));
}

TEST(CommHandleLayoutTest, ItsTwoWaysToOpenAreBehindTheLinesOperations) {
    using Parity = CommInterface::Parity;
    expectLineOperations<Comm::Handle>();
    EXPECT_EQ(slotOf<DeviceResult(unsigned, unsigned, unsigned, Parity)>(&Comm::Handle::open),
              kLineOperations);
    EXPECT_EQ(slotOf<DeviceResult(unsigned, unsigned, unsigned, Parity, int)>(&Comm::Handle::open),
              kLineOperations + 1);
    EXPECT_FALSE(std::has_virtual_destructor_v<Comm::Handle>);
    EXPECT_TRUE(std::is_final_v<Comm::Handle>); // nothing else is destroyed through its pointer
}

TEST(CommSerialLayoutTest, FieldsAndOperationsAreInOrder) {
    const auto fields = fieldsOf(Of<CommSerial>());
    expectInOrder(fields, sizeof(SerialLine));
    EXPECT_EQ(fields[0].type, std::type_index(typeid(std::string)));
    EXPECT_EQ(fields[1].size, sizeof(int));
    EXPECT_EQ(fields[2].type, std::type_index(typeid(termios)));
    expectLineOperations<CommSerial>();
    expectDestructorBehindTheOperations<CommSerial>();
}

TEST(CommFSerialLayoutTest, FieldsAndOperationsAreInOrder) {
    expectFields(fieldsOf(Of<CommFSerial>()), sizeof(SerialLine),
                 {typeid(std::string), typeid(std::FILE*), typeid(termios)});
    expectLineOperations<CommFSerial>();
    expectDestructorBehindTheOperations<CommFSerial>();
}

TEST(ListenerLayoutTest, TheTimeComesBeforeTheChannel) {
    const auto fields = fieldsOf(Of<Listener>());
    expectInOrder(fields, sizeof(AbstractListener));
    EXPECT_EQ(fields[0].size, sizeof(std::uint64_t));
    EXPECT_EQ(fields[1].type, std::type_index(typeid(std::uint32_t)));
    EXPECT_EQ(numberOfSlots<Listener>(), numberOfSlots<AbstractListener>());
    EXPECT_EQ(staticsOf(Of<Listener>()), Types{typeid(Bytes)});
}

TEST(FlexListenerLayoutTest, TheTimeComesBeforeTheChannel) {
    const auto fields = fieldsOf(Of<FlexListener>());
    expectInOrder(fields, sizeof(AbstractListener));
    EXPECT_EQ(fields[0].size, sizeof(std::uint64_t));
    EXPECT_EQ(fields[1].type, std::type_index(typeid(std::uint32_t)));
    EXPECT_EQ(numberOfSlots<FlexListener>(), numberOfSlots<AbstractListener>());
    EXPECT_EQ(CommandClock::kLongRuntimeMs, 7500u);
}
