// The instrument itself: that it notices what it is there to notice.
#include "support/Layout.h"

#include <gtest/gtest-spi.h>

using namespace layout;

namespace {

struct Plain {
    char first;
    int second;
    char third;
};

struct Base {
    virtual ~Base() = default;
    virtual int one() { return 1; }
    virtual int two() const { return 2; }
    virtual int two(int number) { return number; }
    int ordinary() { return 3; }
};

} // namespace

TEST(LayoutTest, TellsAFieldsPlace) {
    const Field field = describe(&Plain::second);
    EXPECT_EQ(field.offset, offsetof(Plain, second));
    EXPECT_EQ(field.size, sizeof(int));
    EXPECT_EQ(field.alignment, alignof(int));
    EXPECT_EQ(field.type, std::type_index(typeid(int)));
}

TEST(LayoutTest, NoticesAnotherOrderAndFieldsInBetweenAndAhead) {
    const Field first = describe(&Plain::first);
    const Field second = describe(&Plain::second);
    const Field third = describe(&Plain::third);
    expectInOrder({first, second, third}, 0);
    EXPECT_NONFATAL_FAILURE(expectInOrder({first, third}, 0), "field 2");
    EXPECT_NONFATAL_FAILURE(expectInOrder({second, third}, 0), "the first field");
    EXPECT_NONFATAL_FAILURE(expectInOrder({second, first}, sizeof(int)), "field 2");
    EXPECT_FATAL_FAILURE(expectInOrder({}, 0), "empty");
}

TEST(LayoutTest, TellsSlotsByNameAndSignature) {
    EXPECT_EQ(slotOf(&Base::one), kDestructorSlots);
    EXPECT_EQ(slotOf<int() const>(&Base::two), kDestructorSlots + 1);
    EXPECT_EQ(slotOf<int(int)>(&Base::two), kDestructorSlots + 2);
    EXPECT_EQ(numberOfSlots<Base>(), kDestructorSlots + 3);
}

TEST(LayoutTest, AnOrdinaryOperationHasNoSlot) {
    EXPECT_NONFATAL_FAILURE(slotOf(&Base::ordinary), "no virtual operation");
}

TEST(LayoutTest, TheSlotIsTheOneThatACallGoesThrough) {
    // The table of an object, whose address is the object's first word, holds what the slot says.
    struct Derived : Base {
        int one() override { return 4; }
    };
    Derived object;
    void* const* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof table);
    Base base;
    void* const* baseTable = nullptr;
    std::memcpy(&baseTable, static_cast<const void*>(&base), sizeof baseTable);
    EXPECT_NE(table[slotOf(&Base::one)], baseTable[slotOf(&Base::one)]) << "overridden";
    EXPECT_EQ(table[slotOf<int(int)>(&Base::two)], baseTable[slotOf<int(int)>(&Base::two)])
        << "not overridden";
}
