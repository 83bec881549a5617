#include <map>
#include <string>
#include <vector>

#include "commands/AbstractPCmd.h"
#include "commands/DCmd.h"
#include "commands/ECmd.h"
#include "commands/ErrorCmd.h"
#include "commands/GCmd.h"
#include "commands/IWriteCmd.h"
#include "commands/PWriteCmd.h"
#include "commands/PictureFile.h"
#include "commands/SWriteCmd.h"
#include "commands/ackCmd.h"
#include "commands/cReadCmd.h"
#include "commands/iReadCmd.h"
#include "commands/mCmd.h"
#include "commands/pReadCmd.h"
#include "commands/sReadCmd.h"
#include "commands/tCmd.h"
#include "support/Layout.h"

namespace layout {

std::vector<Field> fieldsOf(Of<AbstractPCmd>);
template struct Fields<AbstractPCmd, &AbstractPCmd::m_ports>;

std::vector<Field> fieldsOf(Of<GCmd>);
template struct Fields<GCmd, &GCmd::m_variant, &GCmd::m_variants, &GCmd::m_isViewerRunning,
                       &GCmd::m_isInput3Prepared, &GCmd::m_isInput0Prepared, &GCmd::m_isInput2Prepared,
                       &GCmd::m_isBlackPrepared, &GCmd::m_lastUnpackingError>;

std::vector<Field> fieldsOf(Of<mCmd::Handle>);
template struct Fields<mCmd::Handle, &mCmd::Handle::m_device, &mCmd::Handle::m_type,
                       &mCmd::Handle::m_path, &mCmd::Handle::m_writable, &mCmd::Handle::m_status>;

std::vector<Field> fieldsOf(Of<SWriteCmd>);
template struct Fields<SWriteCmd, &SWriteCmd::m_mayTakeStationsChannel, &SWriteCmd::m_sdioState,
                       &SWriteCmd::m_responseStore, &SWriteCmd::m_responseLength,
                       &SWriteCmd::m_sendBuffer, &SWriteCmd::m_filled, &SWriteCmd::m_expected,
                       &SWriteCmd::m_inputPosition, &SWriteCmd::m_bluetooth>;

std::vector<std::type_index> staticsOf(Of<sReadCmd>);
template struct Statics<sReadCmd, &sReadCmd::kruversion, &sReadCmd::kruversion_checked,
                        &sReadCmd::startupSend, &sReadCmd::s_singleton_mutex>;

#define SINGLETON(Command)                               \
    std::vector<std::type_index> staticsOf(Of<Command>); \
    template struct Statics<Command, &Command::s_singleton_mutex>

SINGLETON(ackCmd);
SINGLETON(ErrorCmd);
SINGLETON(DCmd);
SINGLETON(ECmd);
SINGLETON(GCmd);
SINGLETON(iReadCmd);
SINGLETON(IWriteCmd);
SINGLETON(mCmd);
SINGLETON(pReadCmd);
SINGLETON(PWriteCmd);
SINGLETON(cReadCmd);
SINGLETON(SWriteCmd);
SINGLETON(tCmd);

} // namespace layout

using namespace layout;

namespace {

template <typename Command>
void expectCommand() {
    EXPECT_EQ(slotOf<ProcessResponse*(std::vector<std::vector<char>>&)>(&Command::process), 0u);
    EXPECT_EQ(slotOf<ProcessResponse*(std::vector<unsigned char>*)>(&Command::process), 1u);
    EXPECT_TRUE(std::has_virtual_destructor_v<Command>);
    EXPECT_EQ(numberOfSlots<Command>(), 2 + kDestructorSlots);
    EXPECT_EQ(staticsOf(Of<Command>()).back(), std::type_index(typeid(System::Mutex)));
}

} // namespace

#define EXPECT_COMMAND(Command)                                                    \
    TEST(Command##LayoutTest, KeepsTheSlotsOfTheBaseAndHasAMutexForTheOneObject) { \
        expectCommand<Command>();                                                  \
    }

EXPECT_COMMAND(ackCmd)
EXPECT_COMMAND(ErrorCmd)
EXPECT_COMMAND(DCmd)
EXPECT_COMMAND(ECmd)
EXPECT_COMMAND(GCmd)
EXPECT_COMMAND(iReadCmd)
EXPECT_COMMAND(IWriteCmd)
EXPECT_COMMAND(mCmd)
EXPECT_COMMAND(pReadCmd)
EXPECT_COMMAND(PWriteCmd)
EXPECT_COMMAND(sReadCmd)
EXPECT_COMMAND(cReadCmd)
EXPECT_COMMAND(SWriteCmd)
EXPECT_COMMAND(tCmd)

TEST(AbstractPCmdLayoutTest, TheTableIsAllThatIsAdded) {
    const auto fields = fieldsOf(Of<AbstractPCmd>());
    expectInOrder(fields, sizeof(AbstractCmd));
    EXPECT_EQ(typesOf(fields), Types{typeid(std::vector<AbstractPCmd::PortInfo>)});
    EXPECT_EQ(sizeof(AbstractPCmd), fields[0].end());
    EXPECT_EQ(sizeof(pReadCmd), sizeof(AbstractPCmd));
    EXPECT_EQ(sizeof(PWriteCmd), sizeof(AbstractPCmd));
    EXPECT_EQ(numberOfSlots<AbstractPCmd>(), 2 + kDestructorSlots);
}

TEST(AbstractPCmdLayoutTest, APortsNameComesBeforeItsType) {
    using PortInfo = AbstractPCmd::PortInfo;
    expectFields({describe(&PortInfo::name), describe(&PortInfo::type)}, 0,
                 {typeid(std::string), typeid(PortInfo::Type)});
    EXPECT_EQ(sizeof(PortInfo::Type), 4u);
    EXPECT_EQ(PortInfo::None, 0u);
    EXPECT_EQ(PortInfo::Input, 1u);
    EXPECT_EQ(PortInfo::Output, 3u);
}

TEST(GCmdLayoutTest, FieldsAreInOrder) {
    expectFields(
        fieldsOf(Of<GCmd>()), sizeof(AbstractCmd),
        {typeid(GCmd::variant_type), typeid(std::map<GCmd::variant_type, std::string>), typeid(bool),
         typeid(bool), typeid(bool), typeid(bool), typeid(bool), typeid(std::string)});
}

TEST(GCmdLayoutTest, VariantsAndPicturesHaveTheirNumbers) {
    EXPECT_EQ(GCmd::PAG, 0);
    EXPECT_EQ(GCmd::G11, 1);
    EXPECT_EQ(GCmd::G22, 2);
    EXPECT_EQ(GCmd::G24, 3);
    EXPECT_EQ(GCmd::G21, 4);
    EXPECT_EQ(GCmd::kScreens, 3);
    EXPECT_EQ(PictureFile::kBytes, 1152054);
}

TEST(mCmdLayoutTest, AHandlesFieldsAreInOrder) {
    const auto fields = fieldsOf(Of<mCmd::Handle>());
    expectInOrder(fields, 0);
    EXPECT_EQ(fields[0].size, sizeof(int));
    EXPECT_EQ(fields[1].type, std::type_index(typeid(int)));
    EXPECT_EQ(fields[2].type, std::type_index(typeid(std::string)));
    EXPECT_EQ(fields[3].type, std::type_index(typeid(bool)));
    EXPECT_EQ(fields[4].type, std::type_index(typeid(struct stat)));
}

TEST(SWriteCmdLayoutTest, FieldsAreInOrder) {
    const auto fields = fieldsOf(Of<SWriteCmd>());
    expectInOrder(fields, sizeof(AbstractCmd));
    EXPECT_EQ(fields[0].size, sizeof(bool));
    EXPECT_EQ(fields[1].type, std::type_index(typeid(std::int32_t)));
    EXPECT_EQ(fields[5].type, std::type_index(typeid(std::uint16_t)));
    EXPECT_EQ(fields[6].type, std::type_index(typeid(std::uint16_t)));
    EXPECT_EQ(fields[8].type, std::type_index(typeid(mvbtCmd)));
}

TEST(sReadCmdLayoutTest, TheStatusHasItsStatics) {
    EXPECT_EQ(staticsOf(Of<sReadCmd>()),
              (Types{typeid(std::uint16_t), typeid(bool), typeid(bool), typeid(System::Mutex)}));
    EXPECT_EQ(sReadCmd::Startup, 0);
    EXPECT_EQ(sReadCmd::Requested, 1);
}
