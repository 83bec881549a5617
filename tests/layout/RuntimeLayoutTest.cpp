#include "runtime/Condition.h"
#include "runtime/Mutex.h"
#include "runtime/StatedThread.h"
#include "runtime/Thread.h"
#include "runtime/ThreadAttributes.h"
#include "support/Layout.h"

namespace layout {

std::vector<Field> fieldsOf(Of<System::Mutex>);
template struct Fields<System::Mutex, &System::Mutex::m_valid, &System::Mutex::m_mutex>;

std::vector<Field> fieldsOf(Of<System::Condition>);
template struct Fields<System::Condition, &System::Condition::m_condition, &System::Condition::m_valid>;

std::vector<Field> fieldsOf(Of<System::Thread>);
template struct Fields<System::Thread, &System::Thread::m_lock, &System::Thread::m_runState,
                       &System::Thread::m_signal, &System::Thread::m_name, &System::Thread::m_valid>;

std::vector<long long> valuesOf(Of<System::Thread>);
template struct Values<System::Thread, System::Thread::Starting, System::Thread::BodyRunning,
                       System::Thread::NotRunning>;

std::vector<Field> fieldsOf(Of<StatedThread>);
template struct Fields<StatedThread, &StatedThread::m_state, &StatedThread::m_stateChanged,
                       &StatedThread::m_stateLock>;

} // namespace layout

using namespace layout;
using ::testing::ElementsAre;

TEST(MutexLayoutTest, FieldsAndTypesAreInOrder) {
    expectFields(fieldsOf(Of<System::Mutex>()), 0, {typeid(bool), typeid(pthread_mutex_t)});
    EXPECT_FALSE(std::is_polymorphic_v<System::Mutex>);
    EXPECT_EQ(System::Mutex::Normal, 0);
    EXPECT_EQ(System::Mutex::Recursive, 1);
}

TEST(ConditionLayoutTest, FieldsAreInOrderAndTheDestructorIsVirtual) {
    expectFields(fieldsOf(Of<System::Condition>()), kPointer, {typeid(pthread_cond_t), typeid(bool)});
    EXPECT_TRUE(std::has_virtual_destructor_v<System::Condition>);
    EXPECT_EQ(numberOfSlots<System::Condition>(), kDestructorSlots);
}

TEST(ThreadLayoutTest, FieldsAreInOrder) {
    expectFields(fieldsOf(Of<System::Thread>()), kPointer,
                 {typeid(System::Mutex), typeid(int), typeid(System::Condition), typeid(std::string),
                  typeid(bool)});
}

TEST(ThreadLayoutTest, TheBodyComesFirstThenTheStartThenTheDestructor) {
    EXPECT_EQ(slotOf(&System::Thread::threadLoop), 0u);
    EXPECT_EQ(slotOf(&System::Thread::start), 1u);
    EXPECT_TRUE(std::has_virtual_destructor_v<System::Thread>);
    EXPECT_EQ(numberOfSlots<System::Thread>(), 2 + kDestructorSlots);
}

TEST(ThreadLayoutTest, TheRunStatesHaveTheirNumbers) {
    EXPECT_THAT(valuesOf(Of<System::Thread>()), ElementsAre(0, 1, 4));
}

TEST(ThreadLayoutTest, AStackHasItsSizes) {
    EXPECT_EQ(System::ThreadAttributes::kGuardBytes, 16384u);
    EXPECT_EQ(System::ThreadAttributes::kStackBytes, 262144u);
    EXPECT_EQ(System::ThreadAttributes::kPreallocatedBytes, 65536u);
}

TEST(StatedThreadLayoutTest, FieldsAreBehindThoseOfTheThread) {
    expectFields(fieldsOf(Of<StatedThread>()), sizeof(System::Thread),
                 {typeid(StatedThread::LState), typeid(System::Condition), typeid(System::Mutex)});
}

TEST(StatedThreadLayoutTest, KeepsTheSlotsOfTheThread) {
    EXPECT_EQ(slotOf(&StatedThread::threadLoop), 0u);
    EXPECT_EQ(slotOf(&StatedThread::start), 1u);
    EXPECT_EQ(numberOfSlots<StatedThread>(), numberOfSlots<System::Thread>());
}

TEST(StatedThreadLayoutTest, TheStatesHaveTheirNumbers) {
    EXPECT_EQ(StatedThread::Created, 0);
    EXPECT_EQ(StatedThread::Started, 1);
    EXPECT_EQ(StatedThread::Running, 2);
    EXPECT_EQ(StatedThread::Connected, 3);
    EXPECT_EQ(StatedThread::Stopping, 4);
    EXPECT_EQ(StatedThread::Dead, 5);
}
