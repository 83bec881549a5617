#include <map>
#include <string>
#include <utility>

#include "commands/mCmd.h"
#include "support/Layout.h"

namespace layout {

std::vector<Field> fieldsOf(Of<mCmd>);
template struct Fields<mCmd, &mCmd::m_devices, &mCmd::m_positions, &mCmd::m_mutex>;

} // namespace layout

using namespace layout;

TEST(mCmdLayoutTest, TheTableComesBeforeThePathsAndTheMutex) {
    using Positions = std::map<std::string, std::pair<int, unsigned>>;
    using Devices = std::map<int, std::map<unsigned, mCmd::Handle*>>;
    expectFields(fieldsOf(Of<mCmd>()), sizeof(AbstractCmd),
                 {typeid(Devices), typeid(Positions), typeid(System::Mutex)});
}
