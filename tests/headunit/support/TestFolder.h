#pragma once

#include <string>
#include <vector>

namespace headunit_test {

/// Sorted.
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

std::string contentOf(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

} // namespace headunit_test
