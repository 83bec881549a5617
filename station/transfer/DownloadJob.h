#pragma once

#include "transfer/Job.h"

namespace station {

/// A part of the scratch buffer into a file.
class DownloadJob : public Job {
public:
    explicit DownloadJob(const Order& order);

    void run(Unit& unit, Watch& watch, Figures& figures) override;
    std::string leftover(const Figures& figures) const override;

private:
    std::string m_file;
    std::uint64_t m_offset;
    std::uint64_t m_length;
};

/// What a file that came into being in part leaves behind; `content` says what the part holds.
std::string fileLeftover(const std::string& file, const Figures& figures, const std::string& content);

} // namespace station
