#include "frontends/NetListener.h"
#include "frontends/NetListenerAsycSend.h"
#include "support/Layout.h"

namespace layout {

std::vector<Field> fieldsOf(Of<NetListenerAsycSend>);
template struct Fields<NetListenerAsycSend, &NetListenerAsycSend::m_socket>;

} // namespace layout

using namespace layout;

TEST(NetListenerLayoutTest, HasNoDataOfItsOwn) {
    EXPECT_EQ(sizeof(NetListener), sizeof(AbstractListener));
    EXPECT_EQ(numberOfSlots<NetListener>(), numberOfSlots<AbstractListener>());
    EXPECT_EQ(NetListener::kPort, 15051);
}

TEST(NetListenerAsycSendLayoutTest, TheSocketIsAllThatIsAdded) {
    const auto fields = fieldsOf(Of<NetListenerAsycSend>());
    expectInOrder(fields, sizeof(AbstractListener));
    EXPECT_EQ(fields[0].type, std::type_index(typeid(int)));
    EXPECT_EQ(sizeof(NetListenerAsycSend), alignedTo(alignof(NetListenerAsycSend), fields[0].end()));
    EXPECT_EQ(numberOfSlots<NetListenerAsycSend>(), numberOfSlots<AbstractListener>());
}
