#pragma once

#include <string>
#include <vector>

/// The names in it, sorted.
std::vector<std::string> namesIn(const std::string& folder);

/// A folder of the test's own, removed with this object.
class TestFolder {
public:
    TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder();

    const std::string& path() const { return m_path; }
    std::string operator/(const std::string& name) const { return m_path + "/" + name; }

    std::vector<std::string> names() const { return namesIn(m_path); }

private:
    std::string m_path;
};
