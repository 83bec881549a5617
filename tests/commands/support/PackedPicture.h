#pragma once

#include <cstddef>
#include <string>

constexpr std::size_t kPictureBytes = 1152054;

/// Looks like noise, so that packing it makes it no smaller; different for each number.
std::string pictureContent(unsigned number, std::size_t size = kPictureBytes);

/// Packs the content into a file, which is made or replaced. Fails the case when it cannot.
void pack(const std::string& path, const std::string& content);

/// A packed file whose data say nothing that could be unpacked.
std::string brokenPacking();
