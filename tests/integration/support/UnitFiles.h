#pragma once

#include <string>

#include "support/Files.h"

/// The files of the simulated unit that the test runs in.

constexpr char kRevisionFile[] = "/dev/nvsku/rev";
constexpr char kSerialNumberFile[] = "/dev/nvsku/serial_num";
constexpr char kImageVersionFile[] = "/mnt/app/img_ver.txt";
constexpr char kApplicationVersionFile[] = "/mnt/app/version_info.txt";
constexpr char kSystemVersionFile[] = "/ifs/version_info.txt";
constexpr char kStationLine[] = "/dev/usbserialadapter1";
constexpr char kCaptureFile[] = "/tmp/resp.txt";

/// A file, a link or an empty folder.
void removeFile(const std::string& path);

void makeFolder(const std::string& path);

void makeFifo(const std::string& path);

/// A node that opens and says nothing, in place of what is there.
void makeSilent(const std::string& path);

void makeLink(const std::string& path, const std::string& target);
