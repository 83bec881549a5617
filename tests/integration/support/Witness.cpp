#include "support/Witness.h"

#include <gtest/gtest.h>

#include <exception>

#include "support/Connection.h"
#include "support/Lines.h"
#include "support/Waiting.h"

Witness::Witness() : m_thread([this] { ask(); }) {}

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
            const std::string name = "witness" + std::to_string(m_answers);
            expectExchange(station, request(name), unknown(name));
            ++m_answers;
        }
    } catch (const std::exception& exception) {
        ADD_FAILURE() << "witness: " << exception.what();
    }
}
