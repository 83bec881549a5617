#pragma once

/// Has the process see mounts of its own from now on, which it may change. Call it before there are
/// other threads. Where the machine does not allow it nothing changes.
void becomeOwnerOfMounts();

/// A file system that is small: room for so many bytes and so many files, in place of what a folder
/// holds, for this process and all that it has started. It goes with this object.
class SmallFileSystem {
public:
    SmallFileSystem(const char* folder, long bytes, long files);
    ~SmallFileSystem();
    SmallFileSystem(const SmallFileSystem&) = delete;
    SmallFileSystem& operator=(const SmallFileSystem&) = delete;

    /// False where the machine does not allow it.
    bool isThere() const { return m_isThere; }

private:
    const char* m_folder;
    bool m_isThere;
};
