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
    const auto fields = fieldsOf(Of<mCmd>());
    expectInOrder(fields, sizeof(AbstractCmd));
    using Positions = std::map<std::string, std::pair<int, unsigned>>;
    using Devices = std::map<int, std::map<unsigned, mCmd::Handle*>>;
    EXPECT_EQ(typesOf(fields),
              (std::vector<std::type_index>{typeid(Devices), typeid(Positions), typeid(System::Mutex)}));
}
