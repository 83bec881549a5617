#pragma once

namespace headunit {

/// What a user has ordered for the next so many times that something happens. Not synchronised.
template <typename Value>
class StandingOrder {
public:
    /// Takes the place of an earlier order; 0 times takes it back.
    void order(Value value, unsigned times) {
        m_value = value;
        m_times = times;
    }

    /// Whether it is ordered for this time; then it is so once less, and `value` is what was ordered.
    bool take(Value& value) {
        if (m_times == 0)
            return false;
        --m_times;
        value = m_value;
        return true;
    }

    unsigned times() const { return m_times; }

private:
    Value m_value{};
    unsigned m_times = 0;
};

} // namespace headunit
