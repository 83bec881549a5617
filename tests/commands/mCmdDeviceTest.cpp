// Which block devices there are.
#include <iterator>
#include <set>

#include "support/BlockUnit.h"
#include "support/ErrorOutput.h"

namespace {

using mCmdDeviceTest = BlockUnit;
/// Hard disks are looked for when the command is made: each case makes one of its own.
using mCmdHardDiskTest = UnitFixture;

constexpr char kNoSuchId[] = "Device ID does not exist";
constexpr char kNoneInserted[] = "No Device inserted";
constexpr char kNoneRegistered[] = "Probably due to failures no such Device was registered";
constexpr char kNoSuchType[] = "Device Type is unknown";

constexpr char kNoFirstDisk[] = "Prod.testserver: BlockDevice /dev/sda0 is not available\n";
constexpr char kNoSecondDisk[] = "Prod.testserver: BlockDevice /dev/sdb0 is not available\n";

void expectNoDevice(unsigned char type, unsigned char id, const char* text) {
    mCmd::Handle* handle = nullptr;
    const DeviceResult result = mCmd::getInstance()->device(&handle, type, id);
    EXPECT_EQ(result.code, 0x01010000);
    EXPECT_EQ(result.message, text);
    EXPECT_EQ(handle, nullptr);
}

mCmd::Handle* expectDevice(unsigned char type, unsigned char id) {
    mCmd::Handle* handle = nullptr;
    const DeviceResult result = mCmd::getInstance()->device(&handle, type, id);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.message, "");
    EXPECT_NE(handle, nullptr);
    return handle;
}

/// What making the command says on standard error.
std::string madeCommand() {
    return errorOutputOf([] { mCmd::getInstance(); });
}

/// The byte that the device's first block is filled with.
char contentOf(mCmd::Handle* device) {
    std::string block = blocksOf('.');
    unsigned bytes = 0;
    EXPECT_FALSE(device->open().failed());
    EXPECT_FALSE(device->read(bytes, 0, 1, block.data(), static_cast<int>(block.size())).failed());
    EXPECT_FALSE(device->close().failed());
    EXPECT_EQ(block, blocksOf(block.front()));
    return block.front();
}

void makeDisk(const char* path, char content) {
    BlockFile(path, 2).fill(0, content);
}

} // namespace

TEST_F(mCmdDeviceTest, TypesHaveNames) {
    const Rows<int, const char*> rows = {{176, "Generic Device"},    {177, "Hard Disk"},
                                         {178, "Optical Device"},    {179, "Mass Storage Device"},
                                         {180, "SD-Card"},           {175, "Unkown Devicetype"},
                                         {181, "Unkown Devicetype"}, {0, "Unkown Devicetype"},
                                         {-1, "Unkown Devicetype"},  {432, "Unkown Devicetype"}};
    for (const auto& [type, name] : rows)
        EXPECT_EQ(mCmd::getTypeName(type), name) << type;
}

TEST_F(mCmdDeviceTest, AnErrorIsItsTextAndItsCode) {
    const DeviceResult result = mCmd::create_deverror("%s happened", 42);
    EXPECT_EQ(result.code, 42);
    EXPECT_EQ(result.message, "%s happened");
    EXPECT_TRUE(result.failed());
}

TEST_F(mCmdDeviceTest, OnlyWhatIsRegisteredIsFound) {
    const Rows<unsigned char, unsigned char, const char*> rows = {
        {176, 0, kNoneRegistered}, {176, 255, kNoneRegistered}, {177, 0, kNoneRegistered},
        {177, 1, kNoneRegistered}, {178, 1, kNoSuchId},         {178, 255, kNoSuchId},
        {179, 1, kNoneInserted},   {179, 2, kNoneInserted},     {179, 255, kNoneInserted},
        {180, 2, kNoSuchId},       {180, 255, kNoSuchId},       {181, 0, kNoSuchType},
        {175, 0, kNoSuchType},     {0, 0, kNoSuchType},         {255, 255, kNoSuchType},
    };
    for (const auto& [type, id, failure] : rows) {
        SCOPED_TRACE(std::to_string(type) + " " + std::to_string(id));
        expectNoDevice(type, id, failure);
    }
    mCmd::Handle* const all[] = {expectDevice(178, 0), expectDevice(179, 0), expectDevice(180, 0),
                                 expectDevice(180, 1)};
    EXPECT_EQ(std::set<mCmd::Handle*>(std::begin(all), std::end(all)).size(), 4u);
    EXPECT_EQ(expectDevice(178, 0), all[0]) << "each time the same";
}

TEST_F(mCmdDeviceTest, EachDeviceHasItsPlaceAndItsPermission) {
    const Rows<const char*, unsigned char, unsigned char, bool, char> rows = {
        {"/dev/cd0", 178, 0, false, 'c'},
        {"/dev/umass/umass0", 179, 0, true, 'u'},
        {"/dev/mnand0", 180, 0, true, 'n'},
        {"/dev/fs0", 180, 1, true, 'f'}};
    for (const auto& [path, type, id, isWritable, content] : rows)
        makeDisk(path, content);
    for (const auto& [path, type, id, isWritable, content] : rows) {
        SCOPED_TRACE(path);
        mCmd::Handle* const device = expectDevice(type, id);
        EXPECT_EQ(contentOf(device), content);
        std::string block = blocksOf('W');
        unsigned bytes = 0;
        EXPECT_FALSE(device->open().failed());
        const DeviceResult result = device->write(bytes, 0, 1, block.data(), BlockFile::kBlock);
        EXPECT_EQ(result.message, isWritable ? "" : "Device is Read-Only declared");
        EXPECT_FALSE(device->close().failed());
        EXPECT_EQ(read(path), blocksOf(isWritable ? 'W' : content) + blocksOf('\0'));
    }
}

TEST_F(mCmdHardDiskTest, AbsentOnesAreReportedOnce) {
    inFreshProcess([] {
        remove(kFirstDiskPath);
        remove(kSecondDiskPath);
        EXPECT_EQ(madeCommand(), std::string(kNoFirstDisk) + kNoSecondDisk);
        EXPECT_EQ(madeCommand(), "");
        expectNoDevice(kHardDisk, 0, kNoneRegistered);
        makeDisk(kFirstDiskPath, 'a');
        expectNoDevice(kHardDisk, 0, kNoneRegistered); // it came too late
    });
}

TEST_F(mCmdHardDiskTest, ThoseThatAreThereAreReadOnly) {
    inFreshProcess([] {
        makeDisk(kFirstDiskPath, 'a');
        makeDisk(kSecondDiskPath, 'b');
        EXPECT_EQ(madeCommand(), "");
        EXPECT_EQ(contentOf(expectDevice(kHardDisk, 0)), 'a');
        EXPECT_EQ(contentOf(expectDevice(kHardDisk, 1)), 'b');
        expectNoDevice(kHardDisk, 2, kNoSuchId);
        expectNoDevice(kHardDisk, 255, kNoSuchId);
        expectNoDevice(176, 0, kNoneRegistered);
        for (unsigned char id = 0; id < 2; ++id) {
            mCmd::Handle* const disk = expectDevice(kHardDisk, id);
            unsigned bytes = 0;
            char byte = 'z';
            EXPECT_FALSE(disk->open().failed());
            EXPECT_EQ(disk->write(bytes, 0, 0, &byte, 1).message, "Device is Read-Only declared");
        }
    });
}

TEST_F(mCmdHardDiskTest, TheFirstMayBeAlone) {
    inFreshProcess([] {
        makeDisk(kFirstDiskPath, 'a');
        remove(kSecondDiskPath);
        EXPECT_EQ(madeCommand(), kNoSecondDisk);
        EXPECT_EQ(contentOf(expectDevice(kHardDisk, 0)), 'a');
        expectNoDevice(kHardDisk, 1, kNoSuchId);
    });
}

TEST_F(mCmdHardDiskTest, TheSecondMayBeAloneAndKeepsItsNumber) {
    inFreshProcess([] {
        remove(kFirstDiskPath);
        makeDisk(kSecondDiskPath, 'b');
        EXPECT_EQ(madeCommand(), kNoFirstDisk);
        expectNoDevice(kHardDisk, 0, kNoSuchId);
        mCmd::Handle* const disk = expectDevice(kHardDisk, 1);
        ASSERT_NE(disk, nullptr);
        EXPECT_EQ(contentOf(disk), 'b');
    });
}
