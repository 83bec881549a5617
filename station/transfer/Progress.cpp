#include "transfer/Progress.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace station {

namespace {

using TimePoint = std::chrono::steady_clock::time_point;

constexpr std::uint64_t kPercent = 100;
constexpr std::uint64_t kTenth = 10; // percent
constexpr auto kBetweenDrawings = std::chrono::milliseconds(100);
constexpr std::size_t kBarLength = 20;
constexpr std::size_t kNarrow = 72;   // columns in which there is no room for a bar
constexpr std::uint64_t kMinute = 60; // seconds
constexpr std::uint64_t kHour = 60;   // minutes
constexpr std::size_t kTextSize = 64;

/// "0:07", "12:34" or "1:02:03".
std::string timeText(std::uint64_t seconds) {
    std::array<char, kTextSize> text = {};
    const std::uint64_t minutes = seconds / kMinute;
    const auto parts = std::array{minutes / kHour, minutes % kHour, seconds % kMinute};
    if (parts[0] == 0)
        std::snprintf(text.data(), text.size(), "%ju:%02ju", std::uintmax_t{parts[1]},
                      std::uintmax_t{parts[2]});
    else
        std::snprintf(text.data(), text.size(), "%ju:%02ju:%02ju", std::uintmax_t{parts[0]},
                      std::uintmax_t{parts[1]}, std::uintmax_t{parts[2]});
    return text.data();
}

class NoProgress : public Progress {
public:
    void begin(std::uint64_t) override {}
    void at(std::uint64_t) override {}
    void pause() override {}
};

/// How far a transfer is at one moment, in words.
class ProgressText {
public:
    explicit ProgressText(ProgressClock clock) : m_clock(std::move(clock)) {}

    void begin(std::uint64_t total) {
        m_total = total;
        m_start = m_clock();
    }

    TimePoint now() const { return m_clock(); }
    std::uint64_t total() const { return m_total; }

    std::uint64_t percent(std::uint64_t done) const {
        return m_total == 0 ? kPercent : done * kPercent / m_total;
    }

    /// Bytes, rate, and the time that is left, or that it took in the end.
    std::string text(std::uint64_t done, TimePoint now) const {
        const double elapsed = std::chrono::duration<double>(now - m_start).count();
        std::string text = sizeText(done) + " of " + sizeText(m_total);
        if (done == 0 || elapsed <= 0)
            return text;
        const double rate = static_cast<double>(done) / elapsed;
        text += ", " + sizeText(static_cast<std::uint64_t>(rate)) + "/s, ";
        if (done >= m_total)
            return text + timeText(static_cast<std::uint64_t>(elapsed)) + " taken";
        const double left = static_cast<double>(m_total - done) / rate;
        return text + timeText(static_cast<std::uint64_t>(left)) + " left";
    }

private:
    ProgressClock m_clock;
    std::uint64_t m_total = 0;
    TimePoint m_start;
};

class PlainProgress : public Progress {
public:
    PlainProgress(std::ostream& out, ProgressClock clock) : m_out(out), m_text(std::move(clock)) {}

    void begin(std::uint64_t total) override {
        m_text.begin(total);
        m_tenths = 0;
    }

    void at(std::uint64_t done) override {
        const std::uint64_t tenths = m_text.percent(done) / kTenth;
        if (tenths <= m_tenths)
            return;
        m_tenths = tenths;
        m_out << "station: " << tenths * kTenth << " %, " << m_text.text(done, m_text.now())
              << std::endl;
    }

    void pause() override {}

private:
    std::ostream& m_out;
    ProgressText m_text;
    std::uint64_t m_tenths = 0;
};

class BarProgress : public Progress {
public:
    BarProgress(std::ostream& out, std::size_t width, ProgressClock clock)
        : m_out(out), m_width(width), m_text(std::move(clock)) {}

    // A line that is not ended would keep what the shell shows next.
    ~BarProgress() override {
        if (m_isShown)
            m_out << std::endl;
    }

    void begin(std::uint64_t total) override {
        m_text.begin(total);
        draw(0, m_text.now());
    }

    void at(std::uint64_t done) override {
        const TimePoint now = m_text.now();
        if (!m_isShown || done >= m_text.total() || now - m_drawn >= kBetweenDrawings)
            draw(done, now);
    }

    void pause() override {
        if (!m_isShown)
            return;
        m_out << '\r' << std::string(m_length, ' ') << '\r' << std::flush;
        m_isShown = false;
        m_length = 0;
    }

private:
    void draw(std::uint64_t done, TimePoint now) {
        std::array<char, kTextSize> percent = {};
        std::snprintf(percent.data(), percent.size(), "%3ju %% ", std::uintmax_t{m_text.percent(done)});
        std::string line = percent.data() + bar(done) + m_text.text(done, now);
        line.resize(std::min(line.size(), m_width));
        const std::string blanks(m_length - std::min(m_length, line.size()), ' ');
        m_out << '\r' << line << blanks << std::flush;
        m_length = line.size();
        m_isShown = true;
        m_drawn = now;
    }

    /// Always of the same length, so that nothing jumps about.
    std::string bar(std::uint64_t done) const {
        if (m_width < kNarrow)
            return {};
        const auto filled = static_cast<std::size_t>(
            std::min<std::uint64_t>(kBarLength, kBarLength * m_text.percent(done) / kPercent));
        return '[' + std::string(filled, '#') + std::string(kBarLength - filled, '.') + "] ";
    }

    std::ostream& m_out;
    std::size_t m_width;
    ProgressText m_text;
    TimePoint m_drawn;
    std::size_t m_length = 0; // of the line that is shown
    bool m_isShown = false;
};

} // namespace

std::string sizeText(std::uint64_t bytes) {
    constexpr std::array kUnits = {"KiB", "MiB", "GiB", "TiB"};
    constexpr double kStep = 1024;
    // What would be shown as 1024.0 is 1.0 of the next one.
    constexpr double kShownStep = 1023.95;
    if (bytes < static_cast<std::uint64_t>(kStep))
        return std::to_string(bytes) + " B";
    double size = static_cast<double>(bytes) / kStep;
    std::size_t unit = 0;
    for (; size >= kShownStep && unit + 1 < kUnits.size(); ++unit)
        size /= kStep;
    std::array<char, kTextSize> text = {};
    std::snprintf(text.data(), text.size(), "%.1f %s", size, kUnits.at(unit));
    return text.data();
}

std::unique_ptr<Progress> makeProgress(ProgressMode mode, std::ostream& out, std::size_t width,
                                       ProgressClock clock) {
    if (mode == ProgressMode::Bar)
        return std::make_unique<BarProgress>(out, width, std::move(clock));
    if (mode == ProgressMode::Plain)
        return std::make_unique<PlainProgress>(out, std::move(clock));
    return std::make_unique<NoProgress>();
}

} // namespace station
