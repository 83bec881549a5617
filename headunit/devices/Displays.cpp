#include "devices/Displays.h"

#include <unistd.h>

#include <filesystem>

#include "unit/UnitError.h"

namespace headunit {
namespace {

std::string pathOf(const std::string& name) {
    return std::string(DisplayFiles::kFolder) + "/" + name;
}

/// Changes the state that `files` hold, when nobody else is at it.
template <typename Change>
void change(const DisplayFiles& files, Change changeState) {
    const System::Descriptor lock = files.tryLock();
    if (!lock)
        throw UnitError("a display tool is at work; try again");
    DisplayState state = files.load();
    changeState(state);
    files.save(state);
}

} // namespace

Displays::~Displays() {
    for (const std::string& path : {m_state, m_lock})
        if (!path.empty())
            ::unlink(path.c_str());
}

void Displays::install(UnitTree& tree) {
    for (const int display : DisplayState::kDisplays)
        ::unlink(tree.claim(pathOf(DisplayFiles::pictureName(display))).c_str());
    m_lock = tree.claim(pathOf(DisplayFiles::kLock));
    m_state = tree.claim(pathOf(DisplayFiles::kState));
    ::unlink(m_state.c_str());
    m_files = DisplayFiles(std::filesystem::path(m_state).parent_path().string());
}

void Displays::orderFailures(DisplayTool tool, unsigned calls) const {
    change(m_files, [&](DisplayState& state) { state.failures[tool] = calls; });
}

void Displays::setLate(int late) const {
    change(m_files, [&](DisplayState& state) { state.late = late; });
}

} // namespace headunit
