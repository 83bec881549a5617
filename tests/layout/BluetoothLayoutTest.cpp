#include "commands/mvbtCmd.h"
#include "support/Layout.h"

using namespace layout;

TEST(mvbtCmdLayoutTest, TheLibrarysFunctionsHaveTheirSlots) {
    using EntryTable = mvbtCmd::EntryTable;
    EXPECT_EQ(describe(&EntryTable::open).offset, 1 * kPointer);
    EXPECT_EQ(describe(&EntryTable::close).offset, 2 * kPointer);
    EXPECT_EQ(describe(&EntryTable::read).offset, 3 * kPointer);
    EXPECT_EQ(describe(&EntryTable::write).offset, 5 * kPointer);
}
