#pragma once

#include <string>

#include "commands/mCmd.h"
#include "support/BlockFile.h"
#include "support/UnitFixture.h"

constexpr unsigned char kHardDisk = 177;
constexpr unsigned char kOptical = 178;
constexpr unsigned char kStick = 179;
constexpr unsigned char kCard = 180;

constexpr char kFirstDiskPath[] = "/dev/sda0";
constexpr char kSecondDiskPath[] = "/dev/sdb0";
constexpr char kOpticalPath[] = "/dev/cd0";
constexpr char kStickPath[] = "/dev/umass/umass0";
constexpr char kCardPath[] = "/dev/mnand0";
constexpr char kFlashPath[] = "/dev/fs0";

/// A unit without block devices, in which a case puts its own.
class BlockUnit : public UnitFixture {
protected:
    BlockUnit();

    /// What the scratch buffer holds.
    static std::string scratch(std::size_t offset, std::size_t length);
    static void setScratch(std::size_t offset, const std::string& content);
};
