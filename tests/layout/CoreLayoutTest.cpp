#include <atomic>
#include <map>
#include <string>

#include "core/AbstractCmd.h"
#include "core/AbstractListener.h"
#include "core/BuildStamp.h"
#include "core/CRC.h"
#include "core/Handler.h"
#include "core/ProcessResponse.h"
#include "core/ProcessResponseAscii.h"
#include "core/ProcessResponseTavrin.h"
#include "support/Layout.h"

namespace layout {

std::vector<Field> fieldsOf(Of<AbstractCmd>);
template struct Fields<AbstractCmd, &AbstractCmd::m_listener, &AbstractCmd::m_id, &AbstractCmd::m_name>;

std::vector<std::type_index> staticsOf(Of<AbstractCmd>);
template struct Statics<AbstractCmd, &AbstractCmd::m_buffer, &AbstractCmd::m_size>;

std::vector<Field> fieldsOf(Of<Handler>);
// Each waiting request has a `requestDone` of its own, and what is pending is a queue.
template struct Fields<Handler, &Handler::m_commandsById, &Handler::m_commandsByName,
                       &Handler::m_registryLock, &Handler::m_requestReady, &Handler::m_requestLock,
                       &Handler::m_doneLock, &Handler::m_pending>;

std::vector<std::type_index> staticsOf(Of<Handler>);
template struct Statics<Handler, &Handler::s_singleton_mutex>;

std::vector<std::type_index> staticsOf(Of<System::CRC>);
template struct Statics<System::CRC, &System::CRC::crcTab>;

} // namespace layout

using namespace layout;

using Tokens = std::vector<std::vector<char>>;
using Bytes = std::vector<unsigned char>;

TEST(AbstractCmdLayoutTest, FieldsAreInOrder) {
    expectFields(fieldsOf(Of<AbstractCmd>()), kPointer,
                 {typeid(AbstractListener*), typeid(char), typeid(std::string)});
}

TEST(AbstractCmdLayoutTest, LinesComeFirstThenFramesThenTheDestructor) {
    EXPECT_EQ(slotOf<ProcessResponse*(Tokens&)>(&AbstractCmd::process), 0u);
    EXPECT_EQ(slotOf<ProcessResponse*(Bytes*)>(&AbstractCmd::process), 1u);
    EXPECT_TRUE(std::has_virtual_destructor_v<AbstractCmd>);
    EXPECT_EQ(numberOfSlots<AbstractCmd>(), 2 + kDestructorSlots);
}

TEST(AbstractCmdLayoutTest, TheBufferAndItsSizeAreStatic) {
    EXPECT_EQ(staticsOf(Of<AbstractCmd>()), (Types{typeid(unsigned char*), typeid(unsigned int)}));
}

TEST(AbstractListenerLayoutTest, ItsOperationsAreBehindThoseOfTheThread) {
    EXPECT_EQ(slotOf(&AbstractListener::threadLoop), 0u);
    EXPECT_EQ(slotOf(&AbstractListener::start), 1u);
    constexpr std::size_t kOwn = 2 + kDestructorSlots;
    EXPECT_EQ(slotOf<void(std::string&)>(&AbstractListener::asyncSend), kOwn);
    EXPECT_EQ(slotOf<void(Bytes&)>(&AbstractListener::asyncSend), kOwn + 1);
    EXPECT_EQ(slotOf(&AbstractListener::getDeviceListNumber), kOwn + 2);
    EXPECT_EQ(numberOfSlots<AbstractListener>(), kOwn + 3);
    EXPECT_EQ(sizeof(AbstractListener), sizeof(StatedThread));
}

TEST(ProcessResponseLayoutTest, FieldsAreInOrderAndOnlyTheDestructorIsVirtual) {
    expectFields({describe(&ProcessResponse::code), describe(&ProcessResponse::message),
                  describe(&ProcessResponse::protocol)},
                 kPointer, {typeid(std::uint32_t), typeid(std::string), typeid(char)});
    EXPECT_TRUE(std::has_virtual_destructor_v<ProcessResponse>);
    EXPECT_EQ(numberOfSlots<ProcessResponse>(), kDestructorSlots);
    EXPECT_TRUE((std::is_same_v<decltype(ProcessResponse::m_counter), std::atomic<unsigned int>>));
}

TEST(ProcessResponseLayoutTest, TheCodesThatAllCommandsShareHaveTheirNumbers) {
    EXPECT_EQ(ProcessResponse::kSuccess, 0u);
    EXPECT_EQ(ProcessResponse::kNoAnswer, 1u);
    EXPECT_EQ(ProcessResponse::kGenericError, 0x01010000u);
}

TEST(ProcessResponseTavrinLayoutTest, TheFrameIsBehindTheBase) {
    expectFields({describe(&ProcessResponseTavrin::data)}, sizeof(ProcessResponse), {typeid(Bytes)});
    EXPECT_EQ(numberOfSlots<ProcessResponseTavrin>(), kDestructorSlots);
    EXPECT_EQ(ProcessResponseTavrin(0, "").protocol, 't');
}

TEST(ProcessResponseAsciiLayoutTest, TheAnswerIsBehindTheBase) {
    expectFields({describe(&ProcessResponseAscii::answer)}, sizeof(ProcessResponse),
                 {typeid(std::string)});
    EXPECT_EQ(numberOfSlots<ProcessResponseAscii>(), kDestructorSlots);
    EXPECT_EQ(ProcessResponseAscii(0, "").protocol, 'a');
}

TEST(HandlerLayoutTest, FieldsAreInOrder) {
    const auto fields = fieldsOf(Of<Handler>());
    expectInOrder(fields, sizeof(StatedThread));
    const auto types = typesOf(fields);
    EXPECT_EQ(Types(types.begin(), types.begin() + 6),
              (Types{typeid(std::map<char, AbstractCmd*>), typeid(std::map<std::string, AbstractCmd*>),
                     typeid(System::Mutex), typeid(System::Condition), typeid(System::Mutex),
                     typeid(System::Mutex)}));
}

TEST(HandlerLayoutTest, KeepsTheSlotsOfTheThread) {
    EXPECT_EQ(slotOf(&Handler::threadLoop), 0u);
    EXPECT_EQ(slotOf(&Handler::start), 1u);
    EXPECT_EQ(numberOfSlots<Handler>(), numberOfSlots<StatedThread>());
    EXPECT_EQ(staticsOf(Of<Handler>()), Types{typeid(System::Mutex)});
}

TEST(CRCLayoutTest, TheTableIsStaticAndTheFailuresHaveTheirNumbers) {
    EXPECT_EQ(staticsOf(Of<System::CRC>()), Types{typeid(std::uint32_t*)});
    EXPECT_EQ(System::CRC::kTooShort, 1024u);
    EXPECT_EQ(System::CRC::kNoMemory, 1026u);
}

TEST(BuildStampLayoutTest, TheProtocolHasItsVersion) {
    EXPECT_EQ(getProductionVersion(), 4u);
}
