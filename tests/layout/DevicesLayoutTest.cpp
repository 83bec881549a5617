#include <map>
#include <memory>
#include <string>

#include "devices/CommHandler.h"
#include "devices/DeviceResult.h"
#include "devices/I2CHandler.h"
#include "devices/I2c.h"
#include "support/Layout.h"
#include "wire/I2cRequests.h"

namespace layout {

std::vector<Field> fieldsOf(Of<Comm>);
template struct Fields<Comm, &Comm::m_channels, &Comm::m_interface>;

std::vector<std::type_index> staticsOf(Of<Comm>);
template struct Statics<Comm, &Comm::s_singleton_mutex>;

std::vector<Field> fieldsOf(Of<I2c>);
template struct Fields<I2c, &I2c::m_device, &I2c::m_path, &I2c::m_addressFormat, &I2c::m_stop,
                       &I2c::m_speed>;

std::vector<std::type_index> staticsOf(Of<I2CHandler>);
template struct Statics<I2CHandler, &I2CHandler::busInfos, &I2CHandler::initialized>;

} // namespace layout

using namespace layout;

TEST(DeviceResultLayoutTest, TheCodeComesBeforeTheMessage) {
    expectFields({describe(&DeviceResult::code), describe(&DeviceResult::message)}, 0,
                 {typeid(std::int32_t), typeid(std::string)});
}

TEST(DeviceResultLayoutTest, TheProgramsOwnCodesHaveTheirNumbers) {
    EXPECT_EQ(DeviceError::kNotUsable, 0x400);
    EXPECT_EQ(DeviceError::kBaudRate, 0x501);
    EXPECT_EQ(DeviceError::kDataBits, 0x502);
    EXPECT_EQ(DeviceError::kStopBits, 0x503);
    EXPECT_EQ(DeviceError::kParity, 0x504);
    EXPECT_EQ(DeviceError::kNoSuchChannel, 0x505);
}

TEST(CommLayoutTest, TheTableComesBeforeTheInterface) {
    const auto fields = fieldsOf(Of<Comm>());
    expectInOrder(fields, kPointer);
    EXPECT_EQ(fields[1].type, std::type_index(typeid(Comm::Interface)));
    EXPECT_TRUE(std::has_virtual_destructor_v<Comm>);
    EXPECT_EQ(numberOfSlots<Comm>(), kDestructorSlots);
    EXPECT_EQ(staticsOf(Of<Comm>()), Types{typeid(System::Mutex)});
}

TEST(CommLayoutTest, TheInterfacesHaveTheirNumbers) {
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<Comm::PhysicalInterface>, unsigned>));
    EXPECT_EQ(Comm::NoInterface, 0u);
    EXPECT_EQ(Comm::FileInterface, 1u);
    EXPECT_EQ(Comm::StreamInterface, 2u);
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<Comm::Interface>, unsigned>));
    EXPECT_EQ(Comm::Off, 0u);
    EXPECT_EQ(Comm::On, 1u);
}

TEST(I2cLayoutTest, FieldsAreInOrder) {
    const auto fields = fieldsOf(Of<I2c>());
    expectInOrder(fields, kPointer);
    EXPECT_EQ(fields[0].size, sizeof(int));
    EXPECT_EQ(fields[1].type, std::type_index(typeid(std::string)));
    EXPECT_EQ(fields[2].type, std::type_index(typeid(unsigned)));
    EXPECT_EQ(fields[3].type, std::type_index(typeid(bool)));
    EXPECT_EQ(fields[4].type, std::type_index(typeid(unsigned)));
}

TEST(I2cLayoutTest, TheDestructorComesFirst) {
    EXPECT_TRUE(std::has_virtual_destructor_v<I2c>);
    const std::vector<std::size_t> slots = {slotOf(&I2c::close),         slotOf(&I2c::disableStopBit),
                                            slotOf(&I2c::enableStopBit), slotOf(&I2c::isStopBitEnabled),
                                            slotOf(&I2c::isOpen),        slotOf(&I2c::open),
                                            slotOf(&I2c::read),          slotOf(&I2c::setBusSpeed),
                                            slotOf(&I2c::getBusSpeed),   slotOf(&I2c::transfer),
                                            slotOf(&I2c::write)};
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], kDestructorSlots + i);
    EXPECT_EQ(numberOfSlots<I2c>(), kDestructorSlots + slots.size());
}

TEST(I2cLayoutTest, TheManagersRequestsHaveTheirNumbers) {
    EXPECT_EQ(System::I2cRequest::kSetBusSpeed, 0x80040502u);
    EXPECT_EQ(System::I2cRequest::kSend, 0x80100505u);
    EXPECT_EQ(System::I2cRequest::kReceive, 0xC0100506u);
    EXPECT_EQ(System::I2cRequest::kSendReceive, 0xC0140507u);
    EXPECT_EQ(System::I2cRequest::kSevenBits, 2u);
}

TEST(I2CHandlerLayoutTest, ABusComesBeforeItsPath) {
    const std::vector<Field> fields = {describe(&I2CHandler::BusInfo::i2c),
                                       describe(&I2CHandler::BusInfo::path)};
    expectInOrder(fields, 0);
    EXPECT_EQ(fields[0].size, kPointer);
    EXPECT_EQ(fields[1].type, std::type_index(typeid(std::string)));
}

TEST(I2CHandlerLayoutTest, TheTableIsStatic) {
    EXPECT_EQ(staticsOf(Of<I2CHandler>()),
              (Types{typeid(std::map<unsigned, std::unique_ptr<I2CHandler::BusInfo>>), typeid(bool)}));
}
