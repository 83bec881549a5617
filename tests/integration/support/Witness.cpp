#include "support/Witness.h"

#include <gtest/gtest.h>

#include <exception>
#include <utility>

#include "support/Connection.h"
#include "support/Lines.h"
#include "support/Waiting.h"

Witness::Witness()
    : Witness(
          [](long number) {
              const std::string name = "witness" + std::to_string(number);
              return Exchange{request(name), unknown(name)};
          },
          nullptr) {}

Witness::Witness(std::string asked, std::string expected, Delays& delays)
    : Witness([exchange = Exchange{std::move(asked), std::move(expected)}](long) { return exchange; },
              &delays) {}

Witness::Witness(std::function<Exchange(long number)> next, Delays* delays)
    : m_next(std::move(next)), m_delays(delays), m_thread([this] { ask(); }) {}

Witness::~Witness() {
    m_stop = true;
    m_thread.join();
    EXPECT_GT(answers(), 0);
}

bool Witness::seesMore(long answers) const {
    const long enough = m_answers + answers;
    return eventually([&] { return m_answers >= enough; });
}

void Witness::ask() {
    try {
        Connection station;
        while (!m_stop && !testing::Test::HasFailure()) {
            const Exchange exchange = m_next(m_answers);
            const auto begin = Delays::Clock::now();
            expectExchange(station, exchange.asked, exchange.expected);
            if (m_delays)
                m_delays->addSince(begin);
            ++m_answers;
        }
    } catch (const std::exception& exception) {
        ADD_FAILURE() << "witness: " << exception.what();
    }
}
