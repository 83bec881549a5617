#include <gmock/gmock.h>

#include <filesystem>
#include <set>

#include "devices/BoardIdentity.h"
#include "devices/DeviceList.h"
#include "devices/GpioPorts.h"
#include "devices/SoftwareVersions.h"
#include "devices/StoredPictures.h"
#include "devices/UnitTools.h"
#include "pictures/TestPictures.h"
#include "support/TestFiles.h"
#include "support/UnitErrors.h"
#include "unit/HostSystem.h"
#include "unit/UnitError.h"
#include "unit/UnitFolder.h"

namespace headunit {
namespace {

using namespace headunit_test;
using testing::HasSubstr;

class DevicesTest : public testing::Test {
protected:
    TestFolder m_parent;
    UnitFolder m_unit = UnitFolder::kept(m_parent / "unit");
};

TEST_F(DevicesTest, BoardIdentityHoldsRevisionAndSerialNumber) {
    BoardIdentity().install(m_unit);
    EXPECT_EQ(contentOf(m_unit.hostPath("/dev/nvsku/rev")), "1A\n");
    EXPECT_EQ(contentOf(m_unit.hostPath("/dev/nvsku/serial_num")), "0323814000427\n");
}

TEST_F(DevicesTest, SoftwareVersionsHoldThreeFiles) {
    SoftwareVersions().install(m_unit);
    EXPECT_EQ(contentOf(m_unit.hostPath("/mnt/app/img_ver.txt")), "HU-ECE-HIGH PAG 11.02.03\n");
    EXPECT_EQ(contentOf(m_unit.hostPath("/mnt/app/version_info.txt")),
              "component: application\nversion: 11.02.03\nbuilt: 2012-11-05 17:42:10\n");
    EXPECT_EQ(contentOf(m_unit.hostPath("/ifs/version_info.txt")),
              "component: boot image\nversion: 4.17\nbuilt: 2012-10-22 09:15:36\n");
}

TEST_F(DevicesTest, SoftwareVersionsNameAVariantThatIsWanted) {
    SoftwareVersions("G22").install(m_unit);
    EXPECT_EQ(contentOf(m_unit.hostPath("/mnt/app/img_ver.txt")), "HU-ECE-HIGH G22 11.02.03\n");
    SoftwareVersions().install(m_unit);
    EXPECT_EQ(contentOf(m_unit.hostPath("/mnt/app/img_ver.txt")), "HU-ECE-HIGH G22 11.02.03\n");
    SoftwareVersions("G11").install(m_unit);
    EXPECT_EQ(contentOf(m_unit.hostPath("/mnt/app/img_ver.txt")), "HU-ECE-HIGH G11 11.02.03\n");
}

TEST_F(DevicesTest, EveryVariantIsNamedByItsOwnImageOnly) {
    for (const std::string own : SoftwareVersions::kVariants)
        for (const std::string other : SoftwareVersions::kVariants)
            EXPECT_EQ(imageVersion(own).find(other) != std::string::npos, own == other) << own;
}

TEST_F(DevicesTest, TestPicturesAreStoredCompressed) {
    StoredPictureFiles().install(m_unit);
    ASSERT_EQ(storedPictures().size(), kTestPictures.size());
    for (std::size_t i = 0; i < kTestPictures.size(); ++i) {
        const StoredPicture stored = storedPictures()[i];
        EXPECT_EQ(stored.name, kTestPictures[i].name);
        const std::string file =
            m_unit.hostPath("/mnt/app/vrk/production/" + std::string(stored.name) + ".gz");
        EXPECT_EQ(contentOf(file), stored.compressed);
        EXPECT_EQ(stored.compressed.substr(0, 3), "\x1F\x8B\x08");
        EXPECT_LT(stored.compressed.size(), 20000u);
    }
}

TEST_F(DevicesTest, ToolsAreLinksThatAreRenewed) {
    UnitTools().install(m_unit);
    const std::string tool = m_unit.hostPath("/vrk/bin/apps/dmdt");
    const auto target = std::filesystem::read_symlink(tool);
    EXPECT_EQ(target, std::filesystem::path(ownProgram()).parent_path() / "dmdt");
    std::filesystem::remove(tool);
    std::filesystem::create_symlink("/old", tool);
    const std::string library = m_unit.hostPath("/vrk/lib/mv8787bt.so");
    EXPECT_TRUE(std::filesystem::is_symlink(library));
    std::filesystem::remove(library);
    writeFile(library, "prepared");
    UnitTools().install(m_unit);
    EXPECT_EQ(std::filesystem::read_symlink(tool), target);
    EXPECT_EQ(contentOf(library), "prepared");
}

TEST_F(DevicesTest, GpioPortsAreOneNodeEachWithOneCharacter) {
    const std::vector<std::pair<std::string, std::string>> ports = {
        {"ioc_kru_irq", "0"},   {"ipod_accessory", "0"}, {"ipod_detect", "0"}, {"usb_pwr_1", "1"},
        {"usb_pwr_0", "1"},     {"nad_on_off", "0"},     {"nad_reset", "0"},   {"nad_status", "0"},
        {"usb_oc_detect", "1"}, {"vd1_int", "1"},        {"wlan_reset", "1"},  {"sd_cd1", "1"},
        {"sd_wp1", "0"},        {"sd_ena1", "1"},        {"sd_cd2", "1"},      {"sd_wp2", "0"},
        {"sd_ena2", "1"},       {"cvbs_reset", "1"},     {"gpio_po4", "0"},    {"gpio_po3", "0"},
        {"bt_wlan_pd", "1"}};
    GpioPorts().install(m_unit);
    ASSERT_EQ(GpioPorts::kPorts.size(), ports.size());
    for (std::size_t i = 0; i < ports.size(); ++i) {
        EXPECT_EQ(GpioPorts::kPorts[i].name, ports[i].first);
        EXPECT_EQ(contentOf(m_unit.hostPath("/dev/nvgpio/" + ports[i].first)), ports[i].second);
    }
    const std::filesystem::directory_iterator nodes(m_unit.hostPath("/dev/nvgpio"));
    EXPECT_EQ(std::distance(begin(nodes), end(nodes)), 21);
}

TEST_F(DevicesTest, APortsLevelIsWhatItsNodeHolds) {
    GpioPorts ports;
    ports.install(m_unit);
    EXPECT_EQ(ports.level("usb_pwr_0"), '1');
    writeFile(m_unit.hostPath("/dev/nvgpio/usb_pwr_0"), "0");
    EXPECT_EQ(ports.level("usb_pwr_0"), '0');
    ports.setLevel("usb_pwr_0", '1');
    EXPECT_EQ(contentOf(m_unit.hostPath("/dev/nvgpio/usb_pwr_0")), "1");
}

TEST_F(DevicesTest, APortThatIsGoneHasNoLevel) {
    GpioPorts ports;
    EXPECT_THROW(ports.level("usb_pwr_0"), UnitError);
    ports.install(m_unit);
    std::filesystem::remove(m_unit.hostPath("/dev/nvgpio/usb_pwr_0"));
    EXPECT_THROW(ports.level("usb_pwr_0"), UnitError);
    EXPECT_THROW(ports.setLevel("usb_pwr_0", '1'), UnitError);
    writeFile(m_unit.hostPath("/dev/nvgpio/nad_reset"), "");
    EXPECT_THROW(ports.level("nad_reset"), UnitError);
}

TEST_F(DevicesTest, TheListHasEveryDeviceOnce) {
    std::set<std::string_view> names;
    const DeviceList devices = allDevices();
    for (const auto& device : devices)
        names.insert(device->name());
    EXPECT_EQ(names, (std::set<std::string_view>{"board identity", "software versions", "test pictures",
                                                 "tools"}));
    EXPECT_EQ(devices.size(), names.size());
}

TEST_F(DevicesTest, TheListSaysWhichDeviceCannotBeInstalled) {
    writeFile(m_unit.hostPath("/dev/nvsku"), "in the way");
    EXPECT_THAT(unitErrorOf([&] { install(allDevices(), m_unit); }),
                HasSubstr("board identity: cannot make the folder"));
}

} // namespace
} // namespace headunit
