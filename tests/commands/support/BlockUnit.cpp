#include "support/BlockUnit.h"

#include <algorithm>
#include <filesystem>

BlockUnit::BlockUnit() {
    for (const char* path :
         {kFirstDiskPath, kSecondDiskPath, kOpticalPath, kStickPath, kCardPath, kFlashPath})
        remove(path);
    std::filesystem::create_directories("/dev/umass");
    // Opening what is not there closes what an earlier case has left open.
    for (const unsigned char type : {kOptical, kStick, kCard}) {
        for (unsigned char id = 0; id < 2; ++id) {
            mCmd::Handle* handle = nullptr;
            if (!mCmd::getInstance()->device(&handle, type, id).failed())
                handle->open();
        }
    }
}

std::string BlockUnit::scratch(std::size_t offset, std::size_t length) {
    const unsigned char* const begin = AbstractCmd::getGlobalBuffer() + offset;
    return {begin, begin + length};
}

void BlockUnit::setScratch(std::size_t offset, const std::string& content) {
    std::copy(content.begin(), content.end(), AbstractCmd::getGlobalBuffer() + offset);
}
